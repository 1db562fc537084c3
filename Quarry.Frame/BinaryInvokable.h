#pragma once

#include "Quarry.Frame/BinaryProcessor.h"
#include "Quarry.Frame/InvokableProcessor.h"

/// Handle base of an operation on two images.
class BinaryInvokable : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<BinaryProcessor*>(target); }
};
