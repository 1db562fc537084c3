#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/ContourCalcingProcessor.h"

/// Handle of the contour of an object.
class CVContourProcessor : public InvokableProcessor {
public:
    explicit CVContourProcessor(ContourCalcingOptions* options) { target = new ContourCalcingProcessor(options); }

    IProcessor* GetProcessor() override { return dynamic_cast<ContourCalcingProcessor*>(target); }
};
