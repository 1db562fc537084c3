#pragma once

#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

/// A contour against a polygon, in plain steps.
namespace quarry::plain {

inline std::vector<cv::Point2f> Listed(const FloatPoint* points, int count) {
    std::vector<cv::Point2f> list;
    for (int i = 0; i < count; ++i) list.emplace_back(points[i].X, points[i].Y);
    return list;
}

/// 1 inside, -1 outside, 0 across: the side of the first point, unless another point lies on the other one.
inline int PositionOf(const std::vector<cv::Point2f>& polygon, const std::vector<cv::Point2f>& contour) {
    const auto side = [&](const cv::Point2f& point) {
        return static_cast<int>(cv::pointPolygonTest(polygon, point, false));
    };
    const int first = side(contour.front());
    for (const cv::Point2f& point : contour) {
        if (first * side(point) < 0) return 0;
    }
    return first == 0 ? 1 : first;
}

}  // namespace quarry::plain
