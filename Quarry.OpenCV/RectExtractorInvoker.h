#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/RectExtractor.h"

/// Handle base of the rotated rectangle.
class RectExtractorInvoker : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<RectExtractor*>(target); }
};
