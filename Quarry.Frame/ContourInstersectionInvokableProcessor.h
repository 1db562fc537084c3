#pragma once

#include "Quarry.Frame/ContourIntersectionProcessor.h"
#include "Quarry.Frame/InvokableProcessor.h"

/// Handle base of a contour against a polygon. The spelling is part of the interface.
class ContourInstersectionInvokableProcessor : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<ContourIntersectionProcessor*>(target); }
};
