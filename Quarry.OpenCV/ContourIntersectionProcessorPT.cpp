#include "Quarry.OpenCV/ContourIntersectionProcessorPT.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/CheckArray.h"
#include "Quarry.OpenCV/PolygonRows.h"

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

/// Whether any point lies on the other side than the first. The first few points are tested without sorting the
/// polygon's sides: sorting takes longer than these tests, and one of them often decides.
bool Crosses(const std::vector<cv::Point2f>& test, const std::vector<cv::Point2f>& polygon, int side) {
    constexpr std::ptrdiff_t kFew = 4;
    const auto rest = test.begin() + std::min(kFew, static_cast<std::ptrdiff_t>(test.size()));
    const auto isOpposite = [&](const cv::Point2f& point) { return quarry::SideOf(polygon, point) == -side; };
    if (std::any_of(test.begin() + 1, rest, isOpposite)) return true;
    if (rest == test.end()) return false;
    const quarry::PolygonRows rows(polygon);
    return std::any_of(rest, test.end(), [&](const cv::Point2f& point) { return rows.SideOf(point) == -side; });
}

int PositionOf(const std::vector<cv::Point2f>& test, const std::vector<cv::Point2f>& polygon) {
    const int side = quarry::SideOf(polygon, test.front());
    if (side == 0) return kInside;
    return Crosses(test, polygon, side) ? kCrossing : side;
}

}  // namespace

ContourInstersectionProcessorResult ContourIntersectionProcessorPT::DoProcess(ContourIntersectionProcessorData data) {
    CheckContours(data.Polygon, data.TestContour);
    return {0, PositionOf(PointsOf(data.TestContour), PointsOf(data.Polygon))};
}
