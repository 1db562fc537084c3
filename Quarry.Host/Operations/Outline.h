#pragma once

#include <Quarry/Quarry.h>

#include <opencv2/core.hpp>
#include <vector>

namespace quarry::host {

/// A closed line through points; whose coordinates they are says its owner.
using Polygon = std::vector<cv::Point2f>;

/// The contour of something in a frame.
struct Outline {
    Polygon points;       ///< in fractions of the frame's width and height
    float area = 0;       ///< 0..1 of the frame's
    float perimeter = 0;  ///< in widths of the frame
};

/// A copy of what the library gave.
Outline OutlineOf(const Contour& contour);

/// A polygon as the library takes it.
class ContourRecord {
public:
    explicit ContourRecord(const Polygon& polygon);

    /// Valid as long as this lives.
    Contour Get();

private:
    std::vector<FloatPoint> points;
};

}  // namespace quarry::host
