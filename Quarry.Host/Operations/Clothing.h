#pragma once

#include <Quarry/Quarry.h>

#include <array>
#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

#include "Operations/Handle.h"

namespace quarry::host {

constexpr std::size_t kBodyPoints = 17;
/// In shares of the picture's width and height: nose, then left and right of eyes, ears, shoulders, elbows, wrists,
/// hips, knees and ankles.
using Body = std::array<FloatPoint, kBodyPoints>;

using Quadrilateral = std::vector<cv::Point>;

/// What of a body is looked at, in pixels of the picture.
struct ClothingAreas {
    Quadrilateral torso;
    std::array<Quadrilateral, 4> legs;  ///< thighs, then shins
};

ClothingAreas AreasOf(const Body& body, const cv::Size& size);

/// Whether both areas have the two pixels that two colours take.
bool CoverEnough(const ClothingAreas& areas, const cv::Size& size);

/// Red, green and blue, 0..1.
using Colour = cv::Vec3f;

/// Each two: the one with more pixels first.
struct ClothingColours {
    std::array<Colour, 2> torso;
    std::array<Colour, 2> legs;
};

/// The colours that a body is dressed in.
class ClothingColourFinder {
public:
    ClothingColourFinder();

    /// @param picture  packed 8-bit B, G, R
    /// @param body     whose areas cover enough of it
    ClothingColours Find(const cv::Mat& picture, const Body& body);

private:
    Handle handle;
};

}  // namespace quarry::host
