#pragma once

#include <cstdint>
#include <limits>
#include <opencv2/core.hpp>

namespace quarry {

/// The pixels of a rectangle, without a copy.
/// @throws cv::Exception  the rectangle does not lie inside the image
inline cv::Mat RegionOf(const cv::Mat& image, const cv::Rect& rect) {
    // OpenCV refuses a rectangle that leaves the image, but adds in 32 bits: it would accept one whose end wraps.
    constexpr int64_t kLargest = std::numeric_limits<int32_t>::max();
    CV_Assert(int64_t{rect.x} + rect.width <= kLargest && int64_t{rect.y} + rect.height <= kLargest);
    return cv::Mat(image, rect);
}

}  // namespace quarry
