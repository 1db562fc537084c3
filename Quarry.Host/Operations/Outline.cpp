#include "Operations/Outline.h"

#include <cstddef>

namespace quarry::host {

Outline OutlineOf(const Contour& contour) {
    Outline outline{{}, contour.Area, contour.Perimeter};
    outline.points.reserve(static_cast<std::size_t>(contour.Count));
    for (int i = 0; i < contour.Count; ++i) outline.points.emplace_back(contour.Points[i].X, contour.Points[i].Y);
    return outline;
}

ContourRecord::ContourRecord(const Polygon& polygon) {
    points.reserve(polygon.size());
    for (const cv::Point2f& point : polygon) points.push_back({point.x, point.y});
}

Contour ContourRecord::Get() {
    return {points.data(), static_cast<int32_t>(points.size()), 0, 0};
}

}  // namespace quarry::host
