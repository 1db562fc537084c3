#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

namespace quarry {

/// The pixels of a rectangle, without a copy.
/// @throws cv::Exception  the rectangle does not lie inside the image
inline cv::Mat RegionOf(const cv::Mat& image, const cv::Rect& rect) {
    // OpenCV refuses what is negative, but adds in 32 bits, so that a rectangle far outside would pass.
    CV_Assert(int64_t{rect.x} + rect.width <= image.cols && int64_t{rect.y} + rect.height <= image.rows);
    return cv::Mat(image, rect);
}

}  // namespace quarry
