#pragma once

#include "Operations/Handle.h"
#include "Operations/Outline.h"

namespace quarry::host {

/// Where a contour lies, as the library numbers it.
enum class Position : int32_t { Outside = -1, Crossing = 0, Inside = 1 };

/// Where contours lie with respect to polygons.
class PlacementFinder {
public:
    PlacementFinder();

    /// @param polygon  of one point or more, as is the contour, in the same coordinates
    Position Find(const Polygon& polygon, const Polygon& contour);

private:
    Handle handle;
};

/// How the command names a position.
const char* NameOf(Position position);

}  // namespace quarry::host
