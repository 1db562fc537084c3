#include "Quarry.OpenCV/PolygonRows.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace {

constexpr int kInside = 1;
constexpr int kBorder = 0;
constexpr int kOutside = -1;

/// Far below the range in which differences of coordinates would overflow.
constexpr float kLargestCoordinate = 1e30F;

bool IsOrdinary(const cv::Point2f& point) {
    return std::abs(point.x) <= kLargestCoordinate && std::abs(point.y) <= kLargestCoordinate;
}

bool IsBetween(float value, float a, float b) {
    return (a <= value && value <= b) || (b <= value && value <= a);
}

/// Whether the point is the end of the side, or lies on it while it is horizontal.
bool Touches(const cv::Point2f& from, const cv::Point2f& to, const cv::Point2f& point) {
    if (point.y != to.y) return false;
    return point.x == to.x || (point.y == from.y && IsBetween(point.x, from.x, to.x));
}

/// Whether the side crosses the point's row and does not lie entirely left of the point. Of a side's two ends only the
/// upper one counts as crossing.
bool RunsPast(const cv::Point2f& from, const cv::Point2f& to, const cv::Point2f& point) {
    const bool crossesRow = (from.y <= point.y) != (to.y <= point.y);
    return crossesRow && (from.x >= point.x || to.x >= point.x);
}

/// Twice the signed area of the triangle of a side and a point, and a bound of its error in single precision: four
/// roundings of 2^-24 each, doubled for safety.
struct Turn {
    Turn(const cv::Point2f& from, const cv::Point2f& to, const cv::Point2f& point) {
        const double a = (double{point.y} - from.y) * (double{to.x} - from.x);
        const double b = (double{point.x} - from.x) * (double{to.y} - from.y);
        constexpr double kRounding = 0x1p-21;
        value = a - b;
        error = (std::abs(a) + std::abs(b)) * kRounding;
    }
    double value, error;
};

}  // namespace

namespace quarry {

int SideOf(const std::vector<cv::Point2f>& polygon, const cv::Point2f& point) {
    return static_cast<int>(cv::pointPolygonTest(polygon, point, false));
}

PolygonRows::PolygonRows(const std::vector<cv::Point2f>& corners) : polygon(corners) {
    if (polygon.empty() || !std::all_of(polygon.begin(), polygon.end(), IsOrdinary)) return;
    Measure();
    SortSides();
}

/// Finds the polygon's rows and the number of bands. Each side should lie in a few bands on average, so the more often
/// the polygon runs between its top and its bottom, the fewer bands there are.
void PolygonRows::Measure() {
    double climbs = 0;
    float last = polygon.back().y;
    top = bottom = last;
    for (const cv::Point2f& corner : polygon) {
        climbs += std::abs(double{corner.y} - last);
        top = std::min(top, corner.y);
        bottom = std::max(bottom, corner.y);
        last = corner.y;
    }
    const double height = double{bottom} - top;
    const auto count = static_cast<double>(polygon.size());
    const double bands = climbs > 0 ? std::ceil(count * height / climbs) : 1;
    bandsPerRow = height > 0 ? bands / height : 0;
    starts.assign(static_cast<std::size_t>(bands) + 1, 0);
}

/// The band never decreases as y grows, so a point between the ends of a side is in a band between theirs.
std::size_t PolygonRows::BandOf(float y) const {
    return std::min(static_cast<std::size_t>((double{y} - top) * bandsPerRow), starts.size() - 2);
}

void PolygonRows::SortSides() {
    const std::size_t count = polygon.size();
    std::vector<std::size_t> bands(count);
    std::transform(polygon.begin(), polygon.end(), bands.begin(),
                   [this](const auto& corner) { return BandOf(corner.y); });
    const auto forEachBand = [&](const auto& visit) {
        std::size_t from = count - 1;
        for (std::size_t to = 0; to < count; from = to++) {
            const auto [first, last] = std::minmax(bands[from], bands[to]);
            for (std::size_t band = first; band <= last; ++band) visit(band, from, to);
        }
    };
    forEachBand([this](std::size_t band, auto, auto) { ++starts[band]; });
    std::size_t end = 0;
    for (std::size_t& start : starts) start = end += start;  // the bands' ends; each side below moves one to the front
    sides.resize(end);
    forEachBand([this](std::size_t band, std::size_t from, std::size_t to) {
        sides[--starts[band]] = {polygon[from], polygon[to]};
    });
}

int PolygonRows::SideOf(const cv::Point2f& point) const {
    if (starts.empty() || !IsOrdinary(point)) return quarry::SideOf(polygon, point);
    if (point.y < top || point.y > bottom) return kOutside;

    const std::size_t band = BandOf(point.y);
    bool inside = false;
    for (std::size_t i = starts[band]; i < starts[band + 1]; ++i) {
        const auto& [from, to] = sides[i];
        if (Touches(from, to, point)) return kBorder;
        if (!RunsPast(from, to, point)) continue;
        const Turn turn(from, to, point);
        if (std::abs(turn.value) <= turn.error) return quarry::SideOf(polygon, point);
        if ((turn.value > 0) == (to.y > from.y)) inside = !inside;
    }
    return inside ? kInside : kOutside;
}

}  // namespace quarry
