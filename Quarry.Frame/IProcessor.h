#pragma once

#include "Quarry/Quarry.h"

/// A processor as the drivers see it.
class IProcessor {
public:
    virtual void Process(ProcessData* /*input*/, ProcessResult* /*result*/) {}
    virtual void DisposeResult(ProcessResult* /*result*/) {}

protected:
    ~IProcessor() = default;
};
