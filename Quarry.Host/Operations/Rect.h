#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// A rectangle anywhere in a picture.
struct TurnedRect {
    cv::Point centre;  ///< pixels, 16 bits each
    cv::Size size;     ///< pixels, 16 bits each
    double angle = 0;  ///< degrees, clockwise as seen
};

/// Cuts turned rectangles out of pictures.
class RectCutter {
public:
    /// @param bilinear  interpolate between pixels, or take the nearest one
    explicit RectCutter(bool bilinear);

    /// The rectangle turned upright, black where it leaves the picture.
    /// @param picture  packed 8-bit, three channels, as is the result
    cv::Mat Cut(const cv::Mat& picture, const TurnedRect& rect);

private:
    Handle handle;
};

}  // namespace quarry::host
