#pragma once

#include "Quarry.OpenCV/KMeanColorExtractor.h"
#include "Quarry.OpenCV/KMeanColorExtractorInvoker.h"

/// Handle of the clothing colours.
class CVKMeanColorExtractorInvoker : public KMeanColorExtractorInvoker {
public:
    explicit CVKMeanColorExtractorInvoker(KMeanOptions* options) { target = new KMeanColorExtractor(options); }
};
