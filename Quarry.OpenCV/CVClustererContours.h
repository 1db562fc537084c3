#pragma once

#include "Quarry.Frame/ClustererInvoker.h"
#include "Quarry.OpenCV/ClustererContours.h"

/// Handle of the contour clusters.
class CVClustererContours : public ClustererInvoker {
public:
    explicit CVClustererContours(ClustererOptions* options) { target = new ClustererContours(options); }
};
