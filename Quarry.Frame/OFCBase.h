#pragma once

#include "Quarry.Frame/Updatable.h"

/// An optical flow calculator.
class OFCBase : public Updatable<OFCOptions, OFCData, OFCResult> {
public:
    using Updatable::Updatable;

    bool NeedInitialize(OFCData /*data*/) override { return false; }
};
