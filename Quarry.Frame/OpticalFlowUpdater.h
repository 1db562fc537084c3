#pragma once

#include "Quarry.Frame/InvokableUpdater.h"
#include "Quarry.Frame/OFCBase.h"

/// Handle base of an optical flow calculator.
class OpticalFlowUpdater : public InvokableUpdater {
public:
    IUpdatable* GetUpdater() override { return dynamic_cast<OFCBase*>(target); }
};
