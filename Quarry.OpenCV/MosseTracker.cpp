#include "Quarry.OpenCV/MosseTracker.h"

#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/Truncate.h"

namespace {

constexpr double kEps = 1e-5;
constexpr int kTrainingSamples = 8;
constexpr double kResponseSigma = 2.0;  // pixels

struct Mode {
    double learningRate;
    double psrThreshold;
};

constexpr std::array kModes = {Mode{0.2, 5.7}, Mode{0.3, 3.0}};

const Mode& ModeOf(const MosseTrackerOptions& options) {
    if (options.TrackerMode >= kModes.size()) {
        throw std::invalid_argument("MosseTrackerOptions.TrackerMode is " + std::to_string(options.TrackerMode) +
                                    "; 0 or 1 is allowed");
    }
    return kModes[options.TrackerMode];
}

cv::Mat Spectrum(const cv::Mat& window) {
    cv::Mat spectrum;
    cv::dft(window, spectrum, cv::DFT_COMPLEX_OUTPUT);
    return spectrum;
}

/// a times the conjugate of b.
cv::Mat Correlation(const cv::Mat& a, const cv::Mat& b) {
    cv::Mat product;
    cv::mulSpectrums(a, b, product, 0, true);
    return product;
}

/// The window around a centre, in grey. Beyond the frame its border pixels are repeated.
cv::Mat GreyWindow(const cv::Mat& frame, const cv::Size& size, const cv::Point2d& center) {
    CV_Assert(frame.rows > 0 && frame.cols > 0);  // cv::getRectSubPix reads a border pixel even of an empty frame
    cv::Mat window;
    cv::getRectSubPix(frame, size, cv::Point2f(center), window);
    if (window.channels() > 1) cv::cvtColor(window, window, cv::COLOR_BGR2GRAY);
    return window;
}

/// Spectrum of a narrow peak of height 1 at the window's centre.
cv::Mat WantedResponse(const cv::Size& size) {
    cv::Mat response = cv::Mat::zeros(size, CV_32F);
    response.at<float>(size.height / 2, size.width / 2) = 1.0F;
    cv::GaussianBlur(response, response, cv::Size(-1, -1), kResponseSigma);
    double maximum = 0;
    cv::minMaxLoc(response, nullptr, &maximum);
    response = response / maximum;
    return Spectrum(response);
}

}  // namespace

MosseTracker::MosseTracker(MosseTrackerOptions* source)
    : Updatable(source), learningRate(ModeOf(options).learningRate), psrThreshold(ModeOf(options).psrThreshold) {}

MosseTracker::~MosseTracker() {
    delete result;
}

bool MosseTracker::NeedInitialize(MosseTrackerData /*data*/) {
    return needInitialize;
}

void MosseTracker::DoInitialize(MosseTrackerData data) {
    const PixelRect& rect = data.InitialRect;
    initImpl(quarry::PackedFrame(data.Image), cv::Rect2d(rect.X, rect.Y, rect.Width, rect.Height));
    InitResult();
    // This comes last, so that a tracker without its filter or result is initialised again with the next frame.
    needInitialize = false;
}

void MosseTracker::InitResult() {
    if (result == nullptr) result = new MosseTrackerResult{};
}

void MosseTracker::DoUpdate(MosseTrackerData data) {
    found = updateImpl(quarry::PackedFrame(data.Image));
}

void MosseTracker::AssignResultData() {
    result->TargetRect = {static_cast<int16_t>(quarry::Truncate(center.x - size.width * 0.5)),
                          static_cast<int16_t>(quarry::Truncate(center.y - size.height * 0.5)),
                          static_cast<int16_t>(size.width), static_cast<int16_t>(size.height)};
    result->Found = found ? 1 : 0;
}

void MosseTracker::initImpl(const cv::Mat& frame, const cv::Rect_<double>& rect) {
    size = {cv::getOptimalDFTSize(quarry::Truncate(rect.width)), cv::getOptimalDFTSize(quarry::Truncate(rect.height))};
    const double left = std::floor((2 * rect.x + rect.width - size.width) * 0.5);
    const double top = std::floor((2 * rect.y + rect.height - size.height) * 0.5);
    const int halfWidth = size.width / 2;
    const int halfHeight = size.height / 2;
    center = {left + halfWidth, top + halfHeight};

    const cv::Mat window = GreyWindow(frame, size, center);
    cv::createHanningWindow(hanningWindow, size, CV_32F);
    G = WantedResponse(size);

    // All samples are equal, so one is warped and transformed.
    cv::Mat sample = randWarp(window);
    preProcess(sample);
    const cv::Mat spectrum = Spectrum(sample);
    A = SumOfSamples(Correlation(G, spectrum));
    B = SumOfSamples(Correlation(spectrum, spectrum));
    H = divDFTs(A, B);
}

cv::Mat MosseTracker::randWarp(const cv::Mat& window) {
    cv::Mat_<float> warp(2, 3);
    warp << 0.990821838F, -0.111482464F, 0.0F,  // nine digits determine a float exactly
        -0.0472080261F, 0.966010690F, 0.0F;
    const int halfWidth = window.cols / 2;
    const int halfHeight = window.rows / 2;
    const cv::Mat_<float> middle =
        (cv::Mat_<float>(2, 1) << static_cast<float>(halfWidth), static_cast<float>(halfHeight));
    warp.col(2) = middle - warp.colRange(0, 2) * middle;  // the middle stays where it is
    cv::Mat warped;
    cv::warpAffine(window, warped, warp, window.size(), cv::INTER_CUBIC);
    return warped;
}

void MosseTracker::preProcess(cv::Mat& window) const {
    window.convertTo(window, CV_32F, 1.0, 1.0);
    cv::log(window, window);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(window, mean, deviation);
    // Two steps, since OpenCV would scale one expression before it subtracts. In a plain window the deviation is 0: the
    // rounding error of that order, divided by kEps alone, would be large enough to pass for a target.
    cv::subtract(window, mean, window);
    cv::divide(window, cv::Scalar(deviation[0] + kEps), window);
    cv::multiply(window, hanningWindow, window);
}

double MosseTracker::correlate(const cv::Mat& spectrum, cv::Point_<int>& delta) const {
    cv::Mat response;
    cv::idft(Correlation(spectrum, H), response, cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
    double maximum = 0;
    cv::Point peak;
    cv::minMaxLoc(response, nullptr, &maximum, nullptr, &peak);
    const int halfWidth = response.cols / 2;
    const int halfHeight = response.rows / 2;
    delta = {peak.x - halfWidth, peak.y - halfHeight};
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(response, mean, deviation);
    return (maximum - mean[0]) / (deviation[0] + kEps);
}

cv::Mat MosseTracker::SumOfSamples(const cv::Mat& sample) {
    cv::Mat sums(sample.size(), CV_32FC2);
    for (int y = 0; y < sums.rows; ++y) {
        const auto* const terms = sample.ptr<float>(y);
        auto* const out = sums.ptr<float>(y);
        for (int i = 0; i < 2 * sums.cols; ++i) {
            float sum = 0.0F;
            for (int k = 0; k < kTrainingSamples; ++k) sum += terms[i];
            out[i] = sum;
        }
    }
    return sums;
}

cv::Mat MosseTracker::divDFTs(const cv::Mat& numerator, const cv::Mat& denominator) {
    cv::Mat quotient(numerator.size(), CV_32FC2);
    for (int y = 0; y < quotient.rows; ++y) {
        const auto* const a = numerator.ptr<cv::Vec2f>(y);
        const auto* const b = denominator.ptr<cv::Vec2f>(y);
        auto* const out = quotient.ptr<cv::Vec2f>(y);
        for (int x = 0; x < quotient.cols; ++x) {
            const float squared = b[x][0] * b[x][0] + b[x][1] * b[x][1];
            const float real = (a[x][0] * b[x][0] + a[x][1] * b[x][1]) / squared;
            // A sum, not a difference: the filter is defined with it.
            const float imaginary = -(a[x][1] * b[x][0] + a[x][0] * b[x][1]) / squared;
            out[x] = squared == 0.0F ? cv::Vec2f() : cv::Vec2f(real, imaginary);
        }
    }
    return quotient;
}

cv::Mat MosseTracker::PatchSpectrum(const cv::Mat& frame, const cv::Point2d& middle) const {
    cv::Mat patch = GreyWindow(frame, size, middle);
    preProcess(patch);
    return Spectrum(patch);
}

bool MosseTracker::updateImpl(const cv::Mat& frame) {
    if (H.empty()) return false;
    cv::Mat spectrum = PatchSpectrum(frame, center);
    cv::Point_<int> delta;
    const double psr = correlate(spectrum, delta);
    if (psr < psrThreshold) return false;
    const cv::Point2d place = center + cv::Point2d(delta);
    // If the target has not moved, its patch is the one that was searched.
    if (delta != cv::Point()) spectrum = PatchSpectrum(frame, place);
    const cv::Mat numerator = Correlation(G, spectrum) * learningRate + A * (1 - learningRate);
    const cv::Mat denominator = Correlation(spectrum, spectrum) * learningRate + B * (1 - learningRate);
    H = divDFTs(numerator, denominator);
    // Nothing below can fail, so the tracker changes as a whole or not at all.
    A = numerator;
    B = denominator;
    center = place;
    return true;
}
