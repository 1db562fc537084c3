#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/VarianceOfLaplacian.h"

/// Handle of the sharpness of a frame.
class CVLaplacianVarianceProcessor : public InvokableProcessor {
public:
    explicit CVLaplacianVarianceProcessor(ProcessOptions* options) {
        target = new VarianceOfLaplacianProcessor(options);
    }

    IProcessor* GetProcessor() override { return dynamic_cast<VarianceOfLaplacianProcessor*>(target); }
};
