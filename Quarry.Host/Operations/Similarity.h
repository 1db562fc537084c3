#pragma once

#include <array>
#include <cstddef>

#include "Operations/Handle.h"

namespace quarry::host {

constexpr std::size_t kEmbeddingLength = 512;
using Embedding = std::array<float, kEmbeddingLength>;

/// How alike embeddings are.
class SimilarityMeter {
public:
    SimilarityMeter();

    /// The cosine of the angle between them, -1..1; not a number when one is all zeros.
    double Measure(const Embedding& first, const Embedding& second);

private:
    Handle handle;
};

}  // namespace quarry::host
