#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry/SharedRecords.h"

namespace quarry {

/// Writes points in relative coordinates of a frame, in their order.
/// @param origin  of the points' coordinates, in pixels of the frame
inline void WriteRelativePoints(const std::vector<cv::Point>& points, const cv::Point& origin, const cv::Size& frame,
                                FloatPoint* out) {
    for (const cv::Point& point : points) {
        const cv::Point2f relative = CVHelper::AbsoluteToRelative(point + origin, frame.width, frame.height);
        *out++ = {relative.x, relative.y};
    }
}

}  // namespace quarry
