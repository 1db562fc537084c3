#pragma once

#include "Quarry/Quarry.h"

/// An updater as the drivers see it.
class IUpdatable {
public:
    virtual void Update(UpdateData* /*data*/) {}
    virtual int32_t GetState() { return NoResult; }
    virtual void GetResult(UpdateResult* /*result*/) {}

protected:
    ~IUpdatable() = default;
};
