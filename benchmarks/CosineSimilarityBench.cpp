#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/CosineSimilarity.h"

namespace {

using namespace quarry::bench;

constexpr std::size_t kLength = 512;
using Embedding = std::array<float, kLength>;

Embedding RandomEmbedding(uint64_t seed) {
    cv::RNG random(seed);
    Embedding values;
    for (float& value : values) value = static_cast<float>(random.gaussian(1.0));
    return values;
}

}  // namespace

int main(int argc, char** argv) {
    static const Embedding first = RandomEmbedding(1);
    static const Embedding second = RandomEmbedding(2);
    Compare("CosineSimilarity", {"", "512 values", 1.3},
            Computed([] { return quarry::plain::Cosine(first.data(), second.data()); }),
            Called<ProcessOptions, EmbeddingData, CosineOutputData>(
                CreateCVCosineSimilarity, {}, {0, {}, first.data(), {}, second.data()},
                [](const CosineOutputData& result) { return BytesOf(result.Similarity); }));
    return Run(argc, argv);
}
