#pragma once

#include "Quarry.Frame/ContourMaskInvokableProcessor.h"
#include "Quarry.OpenCV/ContourMaskProcessorDC.h"

/// Handle of the grid of occupied cells.
class CVContourMaskProcessor : public ContourMaskInvokableProcessor {
public:
    explicit CVContourMaskProcessor(ContourMaskProcessorOptions* options) {
        target = new ContourMaskProcessorDC(options);
    }
};
