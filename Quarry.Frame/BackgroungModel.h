#pragma once

#include "Quarry.Frame/Updatable.h"

/// A background model. The spelling is part of the interface.
class BackgroungModel : public Updatable<BackgroundOptions, BackgroundData, BackgroundResult> {
public:
    using Updatable::Updatable;

    bool NeedInitialize(BackgroundData /*data*/) override { return false; }
};
