/// @file
/// Records of the cosine similarity of two embeddings (CosineSimilarity).
#pragma once

#include "Quarry/Records/ProcessOptions.h"

/// Two embeddings of 512 values each.
typedef struct EmbeddingData {
    uint32_t Header;               ///< the host's to use; not read
    uint64_t FirstReserved;        ///< not read
    const float* FirstEmbedding;   ///< 512 values
    uint64_t SecondReserved;       ///< not read
    const float* SecondEmbedding;  ///< 512 values
} EmbeddingData;

QUARRY_LAYOUT_SIZE(EmbeddingData, 40);
QUARRY_LAYOUT_FIELD(EmbeddingData, Header, 0);
QUARRY_LAYOUT_FIELD(EmbeddingData, FirstReserved, 8);
QUARRY_LAYOUT_FIELD(EmbeddingData, FirstEmbedding, 16);
QUARRY_LAYOUT_FIELD(EmbeddingData, SecondReserved, 24);
QUARRY_LAYOUT_FIELD(EmbeddingData, SecondEmbedding, 32);

/// The similarity; holds no buffer.
typedef struct CosineOutputData {
    int32_t Status;  ///< always 0
    /// cosine of the angle between the embeddings, -1..1 but for rounding; not a number when one is all zeros
    double Similarity;
} CosineOutputData;

QUARRY_LAYOUT_SIZE(CosineOutputData, 16);
QUARRY_LAYOUT_FIELD(CosineOutputData, Status, 0);
QUARRY_LAYOUT_FIELD(CosineOutputData, Similarity, 8);
