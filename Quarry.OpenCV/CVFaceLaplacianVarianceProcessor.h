#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/FaceVarianceOfLaplacian.h"

/// Handle of the sharpness of a face.
class CVFaceLaplacianVarianceProcessor : public InvokableProcessor {
public:
    explicit CVFaceLaplacianVarianceProcessor(ProcessOptions* options) {
        target = new FaceVarianceOfLaplacianProcessor(options);
    }

    IProcessor* GetProcessor() override { return dynamic_cast<FaceVarianceOfLaplacianProcessor*>(target); }
};
