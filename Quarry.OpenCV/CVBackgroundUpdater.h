#pragma once

#include "Quarry.Frame/BackgroundUpdater.h"
#include "Quarry.OpenCV/BackgroundUpdating.h"

/// Handle of a background model.
class CVBackgroundUpdater : public BackgroundUpdater {
public:
    explicit CVBackgroundUpdater(BackgroundOptions* options) { target = new BackgroundUpdatingSystem(options); }
};
