#pragma once

#include "Quarry.Frame/ClassificationInvokable.h"
#include "Quarry.OpenCV/CascadeClassifier.h"

/// Handle of the cascade detector.
class CVCascadeClassifier : public ClassificationInvokable {
public:
    explicit CVCascadeClassifier(ClassificationOptions* options) { target = new CascadeClassifier(options); }
};
