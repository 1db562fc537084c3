#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"
#include "Operations/Outline.h"

namespace quarry::host {

/// Which points of a border make its contour.
enum class Tracing : int32_t { None = 1, Simple = 2, Tc89L1 = 3, Tc89Kcos = 4 };

/// Which of several contours is the object's: the one of the largest area or of the largest extent.
enum class Selection : int32_t { Area = 0, Diagonal = 1 };

/// What the command line may set of the search for an object's contour.
struct ObjectContourSettings {
    Tracing tracing = Tracing::Simple;
    Selection selection = Selection::Area;
};

/// The contour of one object in a mask.
class ObjectContourFinder {
public:
    explicit ObjectContourFinder(const ObjectContourSettings& settings);

    /// The contour has no points where there is no object.
    /// @param mask   8-bit, one channel, rows packed: not 0 is foreground
    /// @param place  in pixels, within the mask and not empty: what is outside of it is not looked at
    Outline Find(const cv::Mat& mask, const cv::Rect& place);

private:
    Handle handle;
};

}  // namespace quarry::host
