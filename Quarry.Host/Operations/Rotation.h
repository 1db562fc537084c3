#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// Turns pictures of one size about their middle.
class Rotator {
public:
    explicit Rotator(const cv::Size& size);

    /// The turned picture, corners and all, squeezed into the size of the pictures.
    /// @param picture  packed 8-bit, three channels, as is the result
    /// @param angle    degrees, counter-clockwise as seen
    /// @param scale    of the picture on a canvas that fits it unscaled
    cv::Mat Rotate(const cv::Mat& picture, double angle, double scale);

private:
    cv::Size size;
    Handle handle;
};

}  // namespace quarry::host
