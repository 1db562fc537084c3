#include "plain/MosseTracker.h"

#include <array>
#include <cmath>
#include <cstring>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace quarry::plain {

namespace {

int16_t Low16(int value) {
    return static_cast<int16_t>(static_cast<uint16_t>(value & 0xFFFF));
}

cv::Mat SumOfProducts(const cv::Mat& a, const cv::Mat& b, const cv::Mat& c, const cv::Mat& d) {
    cv::Mat first;
    cv::Mat second;
    cv::multiply(a, b, first);
    cv::multiply(c, d, second);
    cv::add(first, second, first);
    return first;
}

}  // namespace

MosseTracker::MosseTracker(uint32_t mode, const cv::Mat& frame, const PixelRect& rect)
    : rate(mode == 0 ? 0.2 : 0.3), threshold(mode == 0 ? 5.7 : 3.0) {
    width = cv::getOptimalDFTSize(rect.Width);
    height = cv::getOptimalDFTSize(rect.Height);
    const double x1 = std::floor((2.0 * rect.X + rect.Width - width) * 0.5);
    const double y1 = std::floor((2.0 * rect.Y + rect.Height - height) * 0.5);
    const int halfWidth = width / 2;
    const int halfHeight = height / 2;
    centerX = static_cast<int>(x1) + halfWidth;
    centerY = static_cast<int>(y1) + halfHeight;
    const cv::Mat window = Crop(frame);
    cv::createHanningWindow(taper, {width, height}, CV_32F);

    cv::Mat wanted = cv::Mat::zeros(height, width, CV_32F);
    wanted.at<float>(height / 2, width / 2) = 1.0F;
    cv::GaussianBlur(wanted, wanted, {-1, -1}, 2.0, 0.0, cv::BORDER_DEFAULT);
    double maximum = 0;
    cv::minMaxLoc(wanted, nullptr, &maximum);
    wanted = wanted / maximum;
    cv::dft(wanted, target, cv::DFT_COMPLEX_OUTPUT);

    upper = cv::Mat::zeros(height, width, CV_32FC2);
    lower = cv::Mat::zeros(height, width, CV_32FC2);
    for (int sample = 0; sample < 8; ++sample) {
        cv::Mat warped = Warped(window);
        Prepare(warped);
        cv::Mat spectrum;
        cv::dft(warped, spectrum, cv::DFT_COMPLEX_OUTPUT);
        cv::Mat product;
        cv::mulSpectrums(target, spectrum, product, 0, true);
        cv::add(upper, product, upper);
        cv::mulSpectrums(spectrum, spectrum, product, 0, true);
        cv::add(lower, product, lower);
    }
    filter = Divide(upper, lower);
}

PixelRect MosseTracker::Rect() const {
    return {Low16(static_cast<int>(centerX - width * 0.5)), Low16(static_cast<int>(centerY - height * 0.5)),
            Low16(width), Low16(height)};
}

cv::Mat MosseTracker::Divide(const cv::Mat& numerator, const cv::Mat& denominator) {
    std::vector<cv::Mat> a;
    std::vector<cv::Mat> b;
    cv::split(numerator, a);
    cv::split(denominator, b);
    const cv::Mat below = SumOfProducts(b[0], b[0], b[1], b[1]);
    std::vector<cv::Mat> quotient(2);
    cv::divide(SumOfProducts(a[0], b[0], a[1], b[1]), below, quotient[0], 1.0);
    cv::divide(SumOfProducts(a[1], b[0], a[0], b[1]), below, quotient[1], -1.0);
    for (cv::Mat& part : quotient) part.setTo(0.0, below == 0.0);
    cv::Mat merged;
    cv::merge(quotient, merged);
    return merged;
}

cv::Mat MosseTracker::Warped(const cv::Mat& window) {
    const std::array<uint32_t, 4> bits = {0x3F7DA680, 0xBDE450EB, 0xBD415D34, 0x3F774C7A};
    std::array<float, 4> linear = {};
    std::memcpy(linear.data(), bits.data(), sizeof(linear));
    const int halfWidth = window.cols / 2;
    const int halfHeight = window.rows / 2;
    const auto x = static_cast<float>(halfWidth);
    const auto y = static_cast<float>(halfHeight);
    cv::Mat warp(2, 3, CV_32F);
    warp.at<float>(0, 0) = linear[0];
    warp.at<float>(0, 1) = linear[1];
    warp.at<float>(0, 2) = x - (linear[0] * x + linear[1] * y);
    warp.at<float>(1, 0) = linear[2];
    warp.at<float>(1, 1) = linear[3];
    warp.at<float>(1, 2) = y - (linear[2] * x + linear[3] * y);
    cv::Mat warped;
    cv::warpAffine(window, warped, warp, window.size(), cv::INTER_CUBIC, cv::BORDER_CONSTANT, cv::Scalar(0));
    return warped;
}

bool MosseTracker::Track(const cv::Mat& frame) {
    cv::Mat patch = Crop(frame);
    Prepare(patch);
    cv::Mat spectrum;
    cv::dft(patch, spectrum, cv::DFT_COMPLEX_OUTPUT);
    cv::Mat product;
    cv::mulSpectrums(spectrum, filter, product, 0, true);
    cv::Mat response;
    cv::idft(product, response, cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
    double maximum = 0;
    cv::Point peak;
    cv::minMaxLoc(response, nullptr, &maximum, nullptr, &peak);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(response, mean, deviation);
    if ((maximum - mean[0]) / (deviation[0] + 1e-5) < threshold) return false;

    const int halfWidth = response.cols / 2;
    const int halfHeight = response.rows / 2;
    centerX += peak.x - halfWidth;
    centerY += peak.y - halfHeight;
    patch = Crop(frame);
    Prepare(patch);
    cv::dft(patch, spectrum, cv::DFT_COMPLEX_OUTPUT);
    cv::mulSpectrums(target, spectrum, product, 0, true);
    Blend(product, upper);
    cv::mulSpectrums(spectrum, spectrum, product, 0, true);
    Blend(product, lower);
    filter = Divide(upper, lower);
    return true;
}

cv::Mat MosseTracker::Crop(const cv::Mat& frame) const {
    cv::Mat crop;
    cv::getRectSubPix(frame, {width, height}, {static_cast<float>(centerX), static_cast<float>(centerY)}, crop, -1);
    cv::cvtColor(crop, crop, cv::COLOR_BGR2GRAY);
    return crop;
}

void MosseTracker::Prepare(cv::Mat& window) const {
    window.convertTo(window, CV_32F);
    cv::add(window, cv::Scalar(1.0), window);
    cv::log(window, window);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(window, mean, deviation);
    cv::subtract(window, cv::Scalar(mean[0]), window);
    cv::divide(window, cv::Scalar(deviation[0] + 1e-5), window);
    cv::multiply(window, taper, window);
}

void MosseTracker::Blend(const cv::Mat& fresh, cv::Mat& kept) const {
    kept = fresh * rate + kept * (1 - rate);
}

}  // namespace quarry::plain
