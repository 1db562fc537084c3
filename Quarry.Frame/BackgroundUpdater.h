#pragma once

#include "Quarry.Frame/BackgroungModel.h"
#include "Quarry.Frame/InvokableUpdater.h"

/// Handle base of a background model.
class BackgroundUpdater : public InvokableUpdater {
public:
    IUpdatable* GetUpdater() override { return dynamic_cast<BackgroungModel*>(target); }
};
