#pragma once

/// Something that must be built for the data it works on, and rebuilt when the data no longer fit.
template <class D>
class Initializable {
public:
    virtual bool NeedInitialize(D data) = 0;
    virtual void DoInitialize(D data) = 0;
    virtual void ReInitialize(D data) {
        if (NeedInitialize(data)) DoInitialize(data);
    }

protected:
    ~Initializable() = default;
};
