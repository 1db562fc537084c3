#include <cmath>
#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/CosineSimilarity.h"
#include "plain/Steps.h"

using namespace quarry::fuzz;

namespace {

constexpr int kLength = 512;

/// Values one after the other, or a few of them over and over.
const float* Embedding(Bytes& bytes) {
    if (bytes.Rarely()) return nullptr;
    const int distinct = 1 + bytes.Below(kLength);
    auto* const values = bytes.Array<float>(kLength, [] { return 0.0F; });
    for (int i = 0; i < kLength; ++i) values[i] = i < distinct ? bytes.Real<float>() : values[i - distinct];
    return values;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVCosineSimilarity, bytes.Any<ProcessOptions>());
    const EmbeddingData input = {bytes.Any<uint32_t>(), bytes.Any<uint64_t>(), Embedding(bytes), bytes.Any<uint64_t>(),
                                 Embedding(bytes)};
    const bool complete = input.FirstEmbedding != nullptr && input.SecondEmbedding != nullptr;
    const bool succeeded = Processed<CosineOutputData>(handle, input, [&](const CosineOutputData& result) {
        const double plain = quarry::plain::Cosine(input.FirstEmbedding, input.SecondEmbedding);
        Require(quarry::plain::SameBits(result.Similarity, plain), "the similarity is that of the plain sums");
    });
    Require(succeeded == complete, "embeddings are refused where one is null");
    return 0;
}
