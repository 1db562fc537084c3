#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/RotationTransformProcessor.h"

/// Handle of the rotation of a frame.
class CVRotationTransformProcessor : public InvokableProcessor {
public:
    explicit CVRotationTransformProcessor(TransformOptions* options) {
        target = new RotationTransformProcessor(options);
    }

    IProcessor* GetProcessor() override { return dynamic_cast<RotationTransformProcessor*>(target); }
};
