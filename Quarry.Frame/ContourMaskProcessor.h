#pragma once

#include "Quarry.Frame/Processor.h"

/// A grid of cells that objects occupy. Its results stay with the host: nothing is released.
class ContourMaskProcessor
    : public Processor<ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult> {
public:
    using Processor::Processor;
};
