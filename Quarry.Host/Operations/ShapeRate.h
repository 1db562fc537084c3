#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"
#include "Operations/Outline.h"

namespace quarry::host {

/// How fast a shape changes.
class ShapeRateMeter {
public:
    /// @param method  1, 2 or 3: how shapes are compared
    explicit ShapeRateMeter(int32_t method);

    /// Change per second; infinite where only one of the two has an area, so that they cannot be compared.
    /// @param before        of one point or more, as is `after`, in fractions of the frame's width and height
    /// @param frame         its size in pixels, within 16 bits
    /// @param milliseconds  between the two, more than 0
    double Measure(const Polygon& before, const Polygon& after, const cv::Size& frame, double milliseconds);

private:
    Handle handle;
};

}  // namespace quarry::host
