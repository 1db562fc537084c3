#pragma once

#include "Quarry.Frame/Processor.h"

/// A filter of one image. A concrete filter releases its own results.
class FilterBase : public Processor<FilterOptions, FilterData, FilterResult> {
public:
    using Processor::Processor;
};
