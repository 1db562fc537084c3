#include "Quarry.OpenCV/CosineSimilarity.h"

#include <cmath>

#include "Quarry.OpenCV/CheckArray.h"

namespace {

constexpr int kLength = 512;

constexpr int kGroup = 4;

double Square(float value) {
    return static_cast<double>(value) * static_cast<double>(value);
}

double GroupOfSquares(const float* v) {
    return Square(v[0]) + Square(v[1]) + Square(v[2]) + Square(v[3]);
}

struct Sums {
    float dot = 0;
    double squaresOfA = 0;
    double squaresOfB = 0;
};

/// The order of each sum is fixed, so each addition waits for the one before it. One loop for the three sums lets these
/// waits overlap.
Sums SumsOf(const float* a, const float* b) {
    Sums sums;
    for (int k = 0; k < kLength; k += kGroup) {
        for (int i = k; i < k + kGroup; ++i) sums.dot += a[i] * b[i];
        sums.squaresOfA += GroupOfSquares(a + k);
        sums.squaresOfB += GroupOfSquares(b + k);
    }
    return sums;
}

}  // namespace

CosineOutputData CosineSimilarity::DoProcess(EmbeddingData data) {
    quarry::CheckArray("EmbeddingData.FirstEmbedding", data.FirstEmbedding, kLength, "values");
    quarry::CheckArray("EmbeddingData.SecondEmbedding", data.SecondEmbedding, kLength, "values");
    const Sums sums = SumsOf(data.FirstEmbedding, data.SecondEmbedding);
    return {0, static_cast<double>(sums.dot) / (std::sqrt(sums.squaresOfA) * std::sqrt(sums.squaresOfB))};
}
