#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/ContourRateMeasuringProcessor.h"

/// Handle of the shape change rate.
class CVContourComparator : public InvokableProcessor {
public:
    explicit CVContourComparator(ContourRateMeasuringOptions* options) {
        target = new ContourRateMeasuringProcessor(options);
    }

    IProcessor* GetProcessor() override { return dynamic_cast<ContourRateMeasuringProcessor*>(target); }
};
