#pragma once

#include <Quarry/Host.hpp>
#include <array>
#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

constexpr std::size_t kBodyPoints = ClothingColors::kKeypoints;
/// In shares of the picture's width and height: nose, then left and right of eyes, ears, shoulders, elbows, wrists,
/// hips, knees and ankles.
using Body = std::array<FloatPoint, kBodyPoints>;

using Quadrilateral = std::vector<cv::Point>;

/// What of a body its clothing colours are taken from, in pixels of the picture.
struct ClothingAreas {
    Quadrilateral torso;
    std::array<Quadrilateral, 4> legs;  ///< thighs, then shins
};

ClothingAreas AreasOf(const Body& body, const cv::Size& size);

/// Whether both areas have the two pixels that two colours take.
bool CoverEnough(const ClothingAreas& areas, const cv::Size& size);

}  // namespace quarry::command
