#pragma once

#include <cmath>
#include <cstddef>

/// The similarity of two embeddings, in plain sums.
namespace quarry::plain {

constexpr std::size_t kEmbeddingLength = 512;

inline double FloatDot(const float* a, const float* b) {
    float sum = 0;
    for (std::size_t i = 0; i < kEmbeddingLength; ++i) sum += a[i] * b[i];
    return static_cast<double>(sum);
}

/// The squares are added four by four.
inline double GroupedNorm(const float* values) {
    const auto square = [&](std::size_t i) { return static_cast<double>(values[i]) * static_cast<double>(values[i]); };
    double sum = 0;
    for (std::size_t i = 0; i < kEmbeddingLength; i += 4) {
        sum += square(i) + square(i + 1) + square(i + 2) + square(i + 3);
    }
    return std::sqrt(sum);
}

inline double Cosine(const float* a, const float* b) {
    return FloatDot(a, b) / (GroupedNorm(a) * GroupedNorm(b));
}

}  // namespace quarry::plain
