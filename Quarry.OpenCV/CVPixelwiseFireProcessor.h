#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/PixelwiseFire.h"

/// Handle of the fire pixels.
class CVPixelwiseFireProcessor : public InvokableProcessor {
public:
    explicit CVPixelwiseFireProcessor(ProcessOptions* options) { target = new PixelwiseFireProcessor(options); }

    IProcessor* GetProcessor() override { return dynamic_cast<PixelwiseFireProcessor*>(target); }
};
