#pragma once

#include "Quarry.Frame/IProcessor.h"
#include "Quarry.Frame/Invokable.h"

/// A handle whose target is a processor.
class InvokableProcessor : public Invokable {
public:
    /// The target as a processor; null when there is none of the expected class.
    virtual IProcessor* GetProcessor() { return nullptr; }
};
