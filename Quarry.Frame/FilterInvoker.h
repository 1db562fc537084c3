#pragma once

#include "Quarry.Frame/FilterBase.h"
#include "Quarry.Frame/InvokableProcessor.h"

/// Handle base of a filter of one image.
class FilterInvoker : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<FilterBase*>(target); }
};
