#include "Quarry.OpenCV/CosineSimilarity.h"

#include <cmath>

#include "Quarry.OpenCV/CheckArray.h"

namespace {

constexpr int kLength = 512;

float Dot(const float* a, const float* b) {
    float sum = 0;
    for (int i = 0; i < kLength; ++i) sum += a[i] * b[i];
    return sum;
}

double Square(float value) {
    return static_cast<double>(value) * static_cast<double>(value);
}

double Norm(const float* v) {
    double sum = 0;
    for (int k = 0; k < kLength; k += 4) {
        sum += Square(v[k]) + Square(v[k + 1]) + Square(v[k + 2]) + Square(v[k + 3]);
    }
    return std::sqrt(sum);
}

}  // namespace

CosineOutputData CosineSimilarity::DoProcess(EmbeddingData data) {
    quarry::CheckArray("EmbeddingData.FirstEmbedding", data.FirstEmbedding, kLength, "values");
    quarry::CheckArray("EmbeddingData.SecondEmbedding", data.SecondEmbedding, kLength, "values");
    const double dot = Dot(data.FirstEmbedding, data.SecondEmbedding);
    return {0, dot / (Norm(data.FirstEmbedding) * Norm(data.SecondEmbedding))};
}
