#pragma once

#include "Quarry.Frame/ContourIntersectionProcessor.h"

/// Where a contour lies with respect to a polygon: 1 inside, -1 outside, 0 across its border.
///
/// The first point of the contour decides between inside and outside. A later point on the other side gives 0; later
/// points on the border do not count. If the first point lies on the border, the result is 1, whatever the others are.
///
/// Points are read in place during the call, both contours in the same coordinates. The result holds no buffer.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `TestContour` has no points, or `Points` is null while `Count` is above 0
/// @throws cv::Exception          OpenCV refuses the polygon, an empty one included
class ContourIntersectionProcessorPT : public ContourIntersectionProcessor {
public:
    using ContourIntersectionProcessor::ContourIntersectionProcessor;

    ContourInstersectionProcessorResult DoProcess(ContourIntersectionProcessorData data) override;
};
