#include "Quarry.OpenCV/PixelwiseFire.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry/Memory.h"

namespace {

constexpr double kMinArea = 4.0;  // pixels, exclusive
constexpr uchar kFlame = 255;

void CheckSize(const Image& frame) {
    if (int64_t{frame.width} * frame.height <= std::numeric_limits<int32_t>::max()) return;
    throw std::invalid_argument("FireInputData.Frame: " + std::to_string(frame.width) + " x " +
                                std::to_string(frame.height) + " pixels; at most 2147483647 are allowed");
}

/// The light of a channel, 0..100, from its byte's value.
double Linear(double channel) {
    const double c = channel / 255.0;
    return (c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.4) : c / 12.92) * 100.0;
}

/// CIE's compression of a tristimulus value.
double Compressed(double t) {
    return t > 0.008856 ? std::pow(t, 1.0 / 3.0) : 7.787 * t + 16.0 / 116.0;
}

cv::Mat FlameCandidates(const cv::Mat& frame) {
    cv::Mat candidates(frame.size(), CV_8UC1);
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) {
            const auto& pixel = frame.at<cv::Vec3b>(y, x);
            const auto [L, a, b] = PixelwiseFireProcessor::RGB2Lab(pixel[2], pixel[1], pixel[0]);
            candidates.at<uchar>(y, x) = PixelwiseFireProcessor::ColorIsFlame(L, a, b) ? kFlame : 0;
        }
    }
    return candidates;
}

/// Draws the largest region of the candidates, filled, if it is large enough.
void DrawLargest(const cv::Mat& candidates, cv::Mat& mask) {
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(candidates, contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    double bestArea = 0;
    std::size_t best = 0;
    for (std::size_t i = 0; i < contours.size(); ++i) {
        const double area = cv::contourArea(contours[i], false);
        if (area > bestArea) {
            bestArea = area;
            best = i;
        }
    }
    if (bestArea > kMinArea) {
        cv::drawContours(mask, contours, static_cast<int>(best), cv::Scalar(kFlame), cv::FILLED);
    }
}

void Grow(cv::Mat& mask) {
    constexpr int kSide = 11;
    constexpr int kIterations = 2;
    const cv::Mat kernel =
        cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(kSide, kSide), cv::Point(kSide / 2, kSide / 2));
    cv::dilate(mask, mask, kernel, cv::Point(-1, -1), kIterations, cv::BORDER_CONSTANT);
}

}  // namespace

FireOutputData PixelwiseFireProcessor::DoProcess(FireInputData data) {
    const Image& image = data.Frame;
    CheckSize(image);
    const cv::Mat frame = quarry::PackedFrame(image);
    const cv::Mat candidates = FlameCandidates(frame);
    quarry::PendingResult result(CreateFireOutputData(image.width, image.height), DestroyFireOutputData);
    cv::Mat mask(image.height, image.width, CV_8UC1, result->FireMask->data, static_cast<std::size_t>(image.width));
    mask.setTo(0);
    DrawLargest(candidates, mask);
    Grow(mask);
    return result.HandOver();
}

void PixelwiseFireProcessor::DoDisposeData(FireOutputData* result) {
    DestroyFireOutputData(result);
}

PixelwiseFireProcessor::Lab PixelwiseFireProcessor::RGB2Lab(double r, double g, double b) {
    const double red = Linear(r);
    const double green = Linear(g);
    const double blue = Linear(b);
    const double X = 0.4124 * red + 0.3576 * green + 0.1805 * blue;
    const double Y = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    const double Z = 0.0193 * red + 0.1192 * green + 0.9505 * blue;
    const double x = Compressed(X / 95.047);
    const double y = Compressed(Y / 100.0);
    const double z = Compressed(Z / 108.883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

bool PixelwiseFireProcessor::ColorLabLIsFlame(double L, double a) {
    const double t1 = 4200.0 - (a + 42.0) * (a + 42.0);
    const double bound1 = t1 > 0 ? 34.0 + std::sqrt(t1) : L + 1.0;  // L + 1: what follows fails
    const double t2 = 1600.0 - (a + 7.0) * (a + 7.0);
    const double bound2 = t2 > 0 ? std::sqrt(t2) + 59.5 : L - 1.0;
    if (!(a > -23.0) || !(a < 51.0)) return false;
    const bool passes = (a > 17.9 && L > 59.0) || (a <= 17.9 && L > bound1);
    if (!passes) return false;
    return a > 5.0 ? -0.54 * a + 92.5 > L : bound2 > L;
}

bool PixelwiseFireProcessor::ColorLabBIsFlame(double a, double b) {
    return a > 4.0 ? b > 1.1 * a - 12.0 : b > 0.13 * ((a - 6.0) * (a - 6.0)) - 8.0;
}

bool PixelwiseFireProcessor::ColorIsFlame(double L, double a, double b) {
    return ColorLabLIsFlame(L, a) && ColorLabBIsFlame(a, b) && L > -0.95 * b + 92.0;
}
