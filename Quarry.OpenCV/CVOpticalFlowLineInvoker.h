#pragma once

#include "Quarry.OpenCV/OpticalFlowLineInvoker.h"
#include "Quarry.OpenCV/OpticalFlowLineProcessor.h"

/// Handle of the motion across a line.
class CVOpticalFlowLineInvoker : public OpticalFlowLineInvoker {
public:
    explicit CVOpticalFlowLineInvoker(OFLineOptions* options) { target = new OpticalFlowLineProcessor(options); }
};
