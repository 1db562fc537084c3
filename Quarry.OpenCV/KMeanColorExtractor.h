#pragma once

#include "Quarry.Frame/Processor.h"
#include "Quarry/Memory.h"

/// Dominant clothing colours. So far the class says how its results are released; no factory builds it.
class KMeanColorExtractor : public Processor<KMeanOptions, KMeanData, KMeanResult> {
public:
    using Processor::Processor;

    void DoDisposeData(KMeanResult* result) override { DestroyKMeanResult(result); }
};
