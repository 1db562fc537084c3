#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/OpticalFlowLineProcessor.h"

/// Handle base of the motion across a line.
class OpticalFlowLineInvoker : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<OpticalFlowLineProcessor*>(target); }
};
