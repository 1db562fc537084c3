#pragma once

#include "Quarry.Frame/Processor.h"
#include "Quarry/Memory.h"

/// A rotated rectangle cut out of a frame. So far the class says how its results are released; no factory builds it.
class RectExtractor : public Processor<RectExtractorOptions, RectExtractorData, RectExtractorResult> {
public:
    using Processor::Processor;

    void DoDisposeData(RectExtractorResult* result) override { DestroyRectExtractorResult(result); }
};
