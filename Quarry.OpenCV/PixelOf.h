#pragma once

#include <opencv2/core.hpp>

#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/SharedRecords.h"

namespace quarry {

/// A relative point in pixels of the frame, truncated. The products are computed in single precision.
inline cv::Point PixelOf(const FloatPoint& point, int width, int height) {
    return {Truncate(point.X * static_cast<float>(width)), Truncate(point.Y * static_cast<float>(height))};
}

}  // namespace quarry
