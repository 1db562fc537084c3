#pragma once

#include "Quarry.Frame/ClustererBase.h"
#include "Quarry.Frame/InvokableProcessor.h"

/// Handle base of a clusterer.
class ClustererInvoker : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<ClustererBase*>(target); }
};
