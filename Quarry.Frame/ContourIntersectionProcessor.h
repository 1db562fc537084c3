#pragma once

#include "Quarry.Frame/Processor.h"

/// A contour against a polygon.
class ContourIntersectionProcessor
    : public Processor<ContourIntersectionProcessorOptions, ContourIntersectionProcessorData,
                       ContourInstersectionProcessorResult> {
public:
    using Processor::Processor;
};
