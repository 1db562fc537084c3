#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"

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

double Square(float value) {
    return static_cast<double>(value) * static_cast<double>(value);
}

double Norm(const Embedding& v) {
    double sum = 0;
    for (std::size_t k = 0; k < kLength; k += 4) {
        sum += Square(v[k]) + Square(v[k + 1]) + Square(v[k + 2]) + Square(v[k + 3]);
    }
    return std::sqrt(sum);
}

double Plain(const float* first, const float* second) {
    Embedding a;
    Embedding b;
    std::copy_n(first, kLength, a.begin());
    std::copy_n(second, kLength, b.begin());
    float dot = 0;
    for (std::size_t i = 0; i < kLength; ++i) dot += a[i] * b[i];
    return static_cast<double>(dot) / (Norm(a) * Norm(b));
}

}  // namespace

int main(int argc, char** argv) {
    static const Embedding first = RandomEmbedding(1);
    static const Embedding second = RandomEmbedding(2);
    Compare("CosineSimilarity", {"", "512 values", 1.3}, Computed([] { return Plain(first.data(), second.data()); }),
            Called<ProcessOptions, EmbeddingData, CosineOutputData>(
                CreateCVCosineSimilarity, {}, {0, {}, first.data(), {}, second.data()},
                [](const CosineOutputData& result) { return BytesOf(result.Similarity); }));
    return Run(argc, argv);
}
