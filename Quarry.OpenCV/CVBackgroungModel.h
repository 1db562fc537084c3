#pragma once

#include "Quarry.Frame/BackgroungModel.h"

/// A background model built on OpenCV. The spelling is part of the interface.
class CVBackgroungModel : public BackgroungModel {
public:
    using BackgroungModel::BackgroungModel;

    void DoUpdate(BackgroundData /*data*/) override {}
};
