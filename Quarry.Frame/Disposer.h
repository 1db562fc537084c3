#pragma once

/// Releases the buffers of result records of type R.
template <class R>
class Disposer {
public:
    virtual void DoDisposeData(R* result) = 0;
    virtual void DisposeData(R* result) {
        if (result != nullptr) DoDisposeData(result);
    }

protected:
    ~Disposer() = default;
};
