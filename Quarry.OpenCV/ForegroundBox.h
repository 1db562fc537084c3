#pragma once

#include <opencv2/core.hpp>

namespace quarry {

/// The bounding box of all pixels that have a byte other than 0, with a margin of one pixel, clipped to the image. If
/// all bytes are 0, it is the image's first pixel.
///
/// The contours in the box are those in the image, shifted. All pixels outside the box are 0, and its margin is 0 or
/// the image's edge, so each foreground pixel keeps its neighbours, and a search row by row meets the pixels in the
/// same order.
/// @param image  8-bit; the box is empty if the image has no pixels or a negative side
cv::Rect ForegroundBox(const cv::Mat& image);

}  // namespace quarry
