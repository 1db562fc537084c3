#pragma once

#include "Quarry.Frame/Processor.h"
#include "Quarry/Memory.h"

/// Motion across a line. So far the class says how its results are released; no factory builds it.
class OpticalFlowLineProcessor : public Processor<OFLineOptions, OFLineData, OFLineResult> {
public:
    using Processor::Processor;

    void DoDisposeData(OFLineResult* result) override { DestroyOFLineResult(result); }
};
