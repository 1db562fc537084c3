#pragma once

#include "Quarry.Frame/Processor.h"
#include "Quarry/Memory.h"

/// A clusterer.
class ClustererBase : public Processor<ClustererOptions, ClustererData, ClustererResult> {
public:
    using Processor::Processor;

    void DoDisposeData(ClustererResult* result) override { DestroyClustererResult(result); }
};
