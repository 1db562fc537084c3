#pragma once

#include "Quarry.OpenCV/RectExtractor.h"
#include "Quarry.OpenCV/RectExtractorInvoker.h"

/// Handle of the rotated rectangle.
class CVRectExtractorInvoker : public RectExtractorInvoker {
public:
    explicit CVRectExtractorInvoker(RectExtractorOptions* options) { target = new RectExtractor(options); }
};
