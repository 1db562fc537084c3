#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/AffineTransformProcessor.h"

/// Handle of the alignment by point pairs.
class CVAffineTransformProcessor : public InvokableProcessor {
public:
    explicit CVAffineTransformProcessor(TransformOptions* options) { target = new AffineTransformProcessor(options); }

    IProcessor* GetProcessor() override { return dynamic_cast<AffineTransformProcessor*>(target); }
};
