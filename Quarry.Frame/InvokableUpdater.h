#pragma once

#include "Quarry.Frame/IUpdatable.h"
#include "Quarry.Frame/Invokable.h"

/// A handle whose target is an updater.
class InvokableUpdater : public Invokable {
public:
    /// The target as an updater; null when there is none of the expected class.
    virtual IUpdatable* GetUpdater() { return nullptr; }
};
