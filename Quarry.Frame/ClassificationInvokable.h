#pragma once

#include "Quarry.Frame/ClassificationProcessor.h"
#include "Quarry.Frame/InvokableProcessor.h"

/// Handle base of a detector.
class ClassificationInvokable : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<ClassificationProcessor*>(target); }
};
