#pragma once

#include <Quarry/Host.hpp>
#include <array>
#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

constexpr std::size_t kBodyPoints = ClothingColors::kKeypoints;
/// The points of a body in fractions of the picture's width and height: nose, then eyes, ears, shoulders, elbows,
/// wrists, hips, knees and ankles, each time left before right.
using Body = std::array<FloatPoint, kBodyPoints>;

using Quadrilateral = std::vector<cv::Point>;

/// The areas of a body that its clothing colours are taken from, in pixels of the picture.
struct ClothingAreas {
    Quadrilateral torso;
    std::array<Quadrilateral, 4> legs;  ///< thighs, then shins
};

ClothingAreas AreasOf(const Body& body, const cv::Size& size);

/// Whether torso and legs each cover two pixels, which two colours take at least.
bool CoverEnough(const ClothingAreas& areas, const cv::Size& size);

}  // namespace quarry::command
