#include "Operations/Similarity.h"

#include "Operations/Call.h"

namespace quarry::host {

SimilarityMeter::SimilarityMeter() : handle(Create(CreateCVCosineSimilarity, ProcessOptions{})) {}

double SimilarityMeter::Measure(const Embedding& first, const Embedding& second) {
    return Processed<CosineOutputData>(handle, EmbeddingData{0, 0, first.data(), 0, second.data()})->Similarity;
}

}  // namespace quarry::host
