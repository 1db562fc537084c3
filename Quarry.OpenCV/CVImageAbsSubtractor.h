#pragma once

#include "Quarry.Frame/BinaryInvokable.h"
#include "Quarry.OpenCV/ImageSubtractor.h"

/// Handle of the absolute difference of two frames.
class CVImageAbsSubtractor : public BinaryInvokable {
public:
    explicit CVImageAbsSubtractor(BinaryImageOperationOptions* options) { target = new ImageSubtractor(options); }
};
