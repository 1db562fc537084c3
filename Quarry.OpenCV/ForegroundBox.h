#pragma once

#include <opencv2/core.hpp>

namespace quarry {

/// The upright box of the pixels that have a byte other than 0, and one pixel around it where the image goes on; the
/// first pixel when there are none.
///
/// The contours of the box are those of the image, shifted: what is left out is 0, so that all other pixels keep their
/// neighbours and are met in the same order, row by row, and the box ends at the image's edges or at zeros.
/// @param image  8-bit; one without pixels, or with a negative side, has an empty box
cv::Rect ForegroundBox(const cv::Mat& image);

}  // namespace quarry
