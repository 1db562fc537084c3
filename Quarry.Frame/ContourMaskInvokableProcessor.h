#pragma once

#include "Quarry.Frame/ContourMaskProcessor.h"
#include "Quarry.Frame/InvokableProcessor.h"

/// Handle base of a grid of occupied cells.
class ContourMaskInvokableProcessor : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<ContourMaskProcessor*>(target); }
};
