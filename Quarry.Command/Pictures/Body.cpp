#include "Body.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <opencv2/imgproc.hpp>

namespace quarry::command {
namespace {

/// Indexes of points of a body: the left one of each pair, which the right one follows.
constexpr std::size_t kShoulders = 5, kHips = 11, kKnees = 13, kAnkles = 15;

cv::Point Pixel(const FloatPoint& point, const cv::Size& size) {
    return {static_cast<int>(point.X * static_cast<float>(size.width)),
            static_cast<int>(point.Y * static_cast<float>(size.height))};
}

/// Half of the width of a leg at three joints, in pixels.
struct HalfWidths {
    int hip, knee, ankle;
};

HalfWidths HalfWidthsOf(const cv::Point& shoulder, const cv::Point& hip) {
    const double unit = 0.25 * std::hypot(shoulder.x - hip.x, shoulder.y - hip.y);
    return {static_cast<int>(0.5 * unit), static_cast<int>(0.4 * unit), static_cast<int>(0.3 * unit)};
}

Quadrilateral Limb(const cv::Point& top, int halfTop, const cv::Point& bottom, int halfBottom) {
    return {{top.x - halfTop, top.y},
            {top.x + halfTop, top.y},
            {bottom.x + halfBottom, bottom.y},
            {bottom.x - halfBottom, bottom.y}};
}

/// The part of a leg below the knee. It ends above the shoe.
Quadrilateral Shin(const cv::Point& knee, int halfKnee, cv::Point ankle, int halfAnkle) {
    ankle.y -= static_cast<int>(0.15 * std::abs(knee.y - ankle.y));
    return Limb(knee, halfKnee, ankle, halfAnkle);
}

void KeepWithin(Quadrilateral& polygon, const cv::Size& size) {
    for (cv::Point& corner : polygon) {
        corner.x = std::clamp(corner.x, 0, size.width - 1);
        corner.y = std::clamp(corner.y, 0, size.height - 1);
    }
}

template <typename Polygons>
bool CoversTwoPixels(const Polygons& polygons, const cv::Size& size) {
    cv::Mat mask(size, CV_8UC1, cv::Scalar(0));
    for (const Quadrilateral& polygon : polygons) cv::fillConvexPoly(mask, polygon, 255);
    return cv::countNonZero(mask) >= 2;
}

}  // namespace

ClothingAreas AreasOf(const Body& body, const cv::Size& size) {
    const auto left = [&](std::size_t joint) { return Pixel(body[joint], size); };
    const auto right = [&](std::size_t joint) { return Pixel(body[joint + 1], size); };
    const HalfWidths half = HalfWidthsOf(right(kShoulders), right(kHips));
    ClothingAreas areas = {
        {left(kShoulders), right(kShoulders), right(kHips), left(kHips)},
        {Limb(left(kHips), half.hip, left(kKnees), half.knee), Limb(right(kHips), half.hip, right(kKnees), half.knee),
         Shin(left(kKnees), half.knee, left(kAnkles), half.ankle),
         Shin(right(kKnees), half.knee, right(kAnkles), half.ankle)}};
    KeepWithin(areas.torso, size);
    for (Quadrilateral& limb : areas.legs) KeepWithin(limb, size);
    return areas;
}

bool CoverEnough(const ClothingAreas& areas, const cv::Size& size) {
    return CoversTwoPixels(std::array{areas.torso}, size) && CoversTwoPixels(areas.legs, size);
}

}  // namespace quarry::command
