#pragma once

#include "Quarry.Frame/OFCBase.h"

/// An optical flow calculator built on OpenCV.
class CVOpticalFlowCalculator : public OFCBase {
public:
    using OFCBase::OFCBase;
};
