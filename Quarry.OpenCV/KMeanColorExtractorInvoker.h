#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/KMeanColorExtractor.h"

/// Handle base of the clothing colours.
class KMeanColorExtractorInvoker : public InvokableProcessor {
public:
    IProcessor* GetProcessor() override { return dynamic_cast<KMeanColorExtractor*>(target); }
};
