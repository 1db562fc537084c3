#pragma once

#include "Quarry.Frame/OpticalFlowUpdater.h"
#include "Quarry.OpenCV/DenseOpticalFlowCalculator.h"

/// Handle of the dense optical flow.
class CVDenseOpticalFlowUpdater : public OpticalFlowUpdater {
public:
    explicit CVDenseOpticalFlowUpdater(OFCOptions* options) { target = new DenseOpticalFlowCalculator(options); }
};
