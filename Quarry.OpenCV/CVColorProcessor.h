#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/ColorComparingProcessor.h"

/// Handle of the colour comparison of two regions.
class CVColorProcessor : public InvokableProcessor {
public:
    explicit CVColorProcessor(ColorComparingOptions* options) { target = new ColorComparingProcessor(options); }

    IProcessor* GetProcessor() override { return dynamic_cast<ColorComparingProcessor*>(target); }
};
