#pragma once

#include "Quarry.Frame/Disposable.h"

/// A handle: owns exactly one target.
///
/// The drivers call the slot after GetTarget, so the order of the virtual functions is part of the interface. A virtual
/// destructor would take slots of its own; that is why Dispose calls this destructor by name.
class Invokable {
public:
    Invokable() = default;
    Invokable(const Invokable&) = delete;
    Invokable& operator=(const Invokable&) = delete;

    ~Invokable() { delete target; }

    virtual Disposable* GetTarget() { return target; }

protected:
    Disposable* target = nullptr;
};
