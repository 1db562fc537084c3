#pragma once

#include <opencv2/core.hpp>

#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/SharedRecords.h"

namespace quarry {

/// A point relative to a frame in its pixels, truncated. The products are taken in single precision.
inline cv::Point PixelOf(const FloatPoint& point, int width, int height) {
    return {Truncate(point.X * static_cast<float>(width)), Truncate(point.Y * static_cast<float>(height))};
}

}  // namespace quarry
