#pragma once

/// What a handle owns: the base through which every target is destroyed.
class Disposable {
public:
    Disposable() = default;
    Disposable(const Disposable&) = delete;
    Disposable& operator=(const Disposable&) = delete;

    virtual void Dispose() {}
    virtual ~Disposable() = default;
};
