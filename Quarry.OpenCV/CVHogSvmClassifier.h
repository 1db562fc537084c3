#pragma once

#include "Quarry.Frame/ClassificationInvokable.h"
#include "Quarry.OpenCV/HogSvmHumanClassifier.h"

/// Handle of the people detector.
class CVHogSvmClassifier : public ClassificationInvokable {
public:
    explicit CVHogSvmClassifier(ClassificationOptions* options) { target = new HogSvmHumanClassifier(options); }
};
