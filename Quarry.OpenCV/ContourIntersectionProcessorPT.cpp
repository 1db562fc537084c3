#include "Quarry.OpenCV/ContourIntersectionProcessorPT.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/CheckArray.h"

namespace {

constexpr int kInside = 1;
constexpr int kCrossing = 0;

std::vector<cv::Point2f> PointsOf(const Contour& contour) {
    std::vector<cv::Point2f> points;
    points.reserve(static_cast<std::size_t>(std::max(contour.Count, 0)));
    for (int i = 0; i < contour.Count; ++i) points.emplace_back(contour.Points[i].X, contour.Points[i].Y);
    return points;
}

void CheckContours(const Contour& polygon, const Contour& test) {
    if (test.Count <= 0) {
        throw std::invalid_argument("ContourIntersectionProcessorData.TestContour.Count is " +
                                    std::to_string(test.Count) + "; at least 1 is needed");
    }
    quarry::CheckArray("ContourIntersectionProcessorData.Polygon.Points", polygon.Points, polygon.Count, "points");
    quarry::CheckArray("ContourIntersectionProcessorData.TestContour.Points", test.Points, test.Count, "points");
}

/// +1 inside the polygon, -1 outside, 0 on its border.
int SideOf(const std::vector<cv::Point2f>& polygon, const cv::Point2f& point) {
    return static_cast<int>(cv::pointPolygonTest(polygon, point, false));
}

int PositionOf(const std::vector<cv::Point2f>& test, const std::vector<cv::Point2f>& polygon) {
    const int side = SideOf(polygon, test.front());
    if (side == 0) return kInside;
    const bool crosses = std::any_of(test.begin() + 1, test.end(),
                                     [&](const cv::Point2f& point) { return SideOf(polygon, point) == -side; });
    return crosses ? kCrossing : side;
}

}  // namespace

ContourInstersectionProcessorResult ContourIntersectionProcessorPT::DoProcess(ContourIntersectionProcessorData data) {
    CheckContours(data.Polygon, data.TestContour);
    return {0, PositionOf(PointsOf(data.TestContour), PointsOf(data.Polygon))};
}
