#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

namespace quarry {

/// The pixels of a rectangle, without a copy.
/// @throws cv::Exception  the rectangle does not lie inside the image. OpenCV's own check adds in 32 bits, so that a
///                        rectangle far outside would pass it.
inline cv::Mat RegionOf(const cv::Mat& image, const cv::Rect& rect) {
    CV_Assert(0 <= rect.x && 0 <= rect.width && int64_t{rect.x} + rect.width <= image.cols);
    CV_Assert(0 <= rect.y && 0 <= rect.height && int64_t{rect.y} + rect.height <= image.rows);
    return cv::Mat(image, rect);
}

}  // namespace quarry
