#pragma once

#include "Quarry.Frame/Processor.h"

/// The outline of one object in a mask of the whole frame, searched inside a rectangle around the object.
///
/// The contour's points are in relative coordinates of the whole frame, in the order in which they were traced. Its
/// area is a share of the frame's area; its perimeter is divided by the frame's width alone. A contour without points
/// means that nothing was found.
///
/// The mask is read in place during the call and left as it is; its rows are packed. The contour belongs to the result,
/// which the host gives back with DisposeResult, also when it has no points.
/// @throws MarshalingException  a record's length word or tag is wrong; the result record is untouched
/// @throws cv::Exception        the mask is empty or its `data` null, the rectangle does not lie inside the mask, or
///                              `ApproximationMethod` is unknown or 0, which gives chain codes instead of points
class ContourCalcingProcessor : public Processor<ContourCalcingOptions, ContourCalcingInputData, ContourResult> {
public:
    using Processor::Processor;

    ContourResult DoProcess(ContourCalcingInputData data) override;
    void DoDisposeData(ContourResult* result) override;
};
