#pragma once

#include "Quarry.Frame/Processor.h"
#include "Quarry/Memory.h"

/// A detector.
class ClassificationProcessor : public Processor<ClassificationOptions, ClassificationData, ClassificationResult> {
public:
    using Processor::Processor;

    void DoDisposeData(ClassificationResult* result) override { DestroyClassificationResult(result); }
};
