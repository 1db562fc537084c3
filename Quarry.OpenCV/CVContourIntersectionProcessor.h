#pragma once

#include "Quarry.Frame/ContourInstersectionInvokableProcessor.h"
#include "Quarry.OpenCV/ContourIntersectionProcessorPT.h"

/// Handle of a contour against a polygon.
class CVContourIntersectionProcessor : public ContourInstersectionInvokableProcessor {
public:
    explicit CVContourIntersectionProcessor(ContourIntersectionProcessorOptions* options) {
        target = new ContourIntersectionProcessorPT(options);
    }
};
