#pragma once

#include "Quarry.Frame/Processor.h"
#include "Quarry/Memory.h"

/// An operation on two images.
class BinaryProcessor : public Processor<BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult> {
public:
    using Processor::Processor;

    void DoDisposeData(ImageOperationResult* result) override { DestroyImageOperationResult(result); }
};
