#pragma once

#include "Quarry.Frame/FilterInvoker.h"
#include "Quarry.OpenCV/FastNlMeansDenoisingFilter.h"

/// Handle of the non-local means denoising.
class CVFastNlMeansDenoisingFilter : public FilterInvoker {
public:
    explicit CVFastNlMeansDenoisingFilter(FilterOptions* options) { target = new FastNlMeansDenoisingFilter(options); }
};
