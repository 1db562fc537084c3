#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <vector>

#include "Quarry/SharedRecords.h"

/// What the targets need to take an operation's steps one by one, with which its own way of taking them is compared.
namespace quarry::fuzz {

/// What plain steps give; nothing where OpenCV refuses one.
template <class Steps>
auto Plainly(Steps steps) -> std::optional<decltype(steps())> {
    try {
        return steps();
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}

/// Whether two numbers are the same to the last bit; those that are none are all alike.
template <class Number>
bool SameBits(Number a, Number b) {
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the bits are what is compared
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (std::isnan(a) && std::isnan(b));
}

/// Without the fraction; the lowest integer for what does not fit.
inline int Truncated(double value) {
    const bool fits = -2147483649.0 < value && value < 2147483648.0;
    return fits ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

/// The packed pixels of a frame.
inline cv::Mat FrameOf(const Image& image) {
    return cv::Mat(image.height, image.width, CV_8UC3, image.data, static_cast<std::size_t>(image.width) * 3);
}

using PixelContour = std::vector<cv::Point>;

/// What in an R, G, B frame is not black, outlined, without small contours.
inline std::vector<PixelContour> BlobsOf(const Image& image, float precision, float minRate) {
    cv::Mat grey;
    cv::cvtColor(FrameOf(image), grey, cv::COLOR_RGB2GRAY);
    std::vector<PixelContour> contours;
    cv::findContours(grey, contours, cv::RETR_EXTERNAL,
                     precision > 0.5F ? cv::CHAIN_APPROX_NONE : cv::CHAIN_APPROX_TC89_KCOS);
    const float area = static_cast<float>(image.width * image.height) * minRate;
    std::vector<PixelContour> blobs;
    for (const PixelContour& contour : contours) {
        if (cv::contourArea(contour) >= Truncated(static_cast<double>(area))) blobs.push_back(contour);
    }
    return blobs;
}

/// Whether a contour of a record is one in pixels of a frame, counted from an origin.
inline bool IsContour(const Contour& record, const PixelContour& contour, const cv::Point& origin, int width,
                      int height) {
    if (record.Count != static_cast<int>(contour.size())) return false;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const cv::Point point = contour[i] + origin;
        if (!SameBits(record.Points[i].X, static_cast<float>(point.x) / static_cast<float>(width))) return false;
        if (!SameBits(record.Points[i].Y, static_cast<float>(point.y) / static_cast<float>(height))) return false;
    }
    return true;
}

}  // namespace quarry::fuzz
