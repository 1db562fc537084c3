#pragma once

#include "Quarry.Frame/Disposable.h"

/// A handle: owns exactly one target. The slot after GetTarget is the one the drivers call, so the order of the virtual
/// functions is part of the interface, and there is no room for a virtual destructor: Dispose runs this one.
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
