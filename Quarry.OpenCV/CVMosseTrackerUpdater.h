#pragma once

#include "Quarry.Frame/InvokableUpdater.h"
#include "Quarry.OpenCV/MosseTracker.h"

/// Handle of a correlation tracker.
class CVMosseTrackerUpdater : public InvokableUpdater {
public:
    explicit CVMosseTrackerUpdater(MosseTrackerOptions* options) { target = new MosseTracker(options); }

    IUpdatable* GetUpdater() override { return dynamic_cast<MosseTracker*>(target); }
};
