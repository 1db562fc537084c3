#pragma once

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.OpenCV/CosineSimilarity.h"

/// Handle of the cosine similarity.
class CVCosineSimilarity : public InvokableProcessor {
public:
    explicit CVCosineSimilarity(ProcessOptions* options) { target = new CosineSimilarity(options); }

    IProcessor* GetProcessor() override { return dynamic_cast<CosineSimilarity*>(target); }
};
