#include "Operations/Placement.h"

#include "Operations/Call.h"

namespace quarry::host {

PlacementFinder::PlacementFinder()
    : handle(Create(CreateCVContourIntersectionProcessor, ContourIntersectionProcessorOptions{})) {}

Position PlacementFinder::Find(const Polygon& polygon, const Polygon& contour) {
    CV_Assert(!polygon.empty() && !contour.empty());
    ContourRecord around(polygon);
    ContourRecord placed(contour);
    const ContourIntersectionProcessorData input = {0, around.Get(), placed.Get()};
    return static_cast<Position>(Processed<ContourInstersectionProcessorResult>(handle, input)->Position);
}

const char* NameOf(Position position) {
    switch (position) {
        case Position::Outside:
            return "outside";
        case Position::Crossing:
            return "crossing";
        case Position::Inside:
            return "inside";
    }
    return "unknown";
}

}  // namespace quarry::host
