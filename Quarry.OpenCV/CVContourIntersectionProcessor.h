#pragma once

#include "Quarry.Frame/ContourInstersectionInvokableProcessor.h"
#include "Quarry.OpenCV/ContourIntersectionProcessorPT.h"

/// Handle of the position of a contour with respect to a polygon.
class CVContourIntersectionProcessor : public ContourInstersectionInvokableProcessor {
public:
    explicit CVContourIntersectionProcessor(ContourIntersectionProcessorOptions* options) {
        target = new ContourIntersectionProcessorPT(options);
    }
};
