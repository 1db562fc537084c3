#pragma once

#include "Quarry.Frame/Processor.h"

/// Cosine similarity of two embeddings of 512 values, such as descriptors of faces or people.
///
/// The dot product is summed in single precision, in the order of the values; the norms in double precision, in groups
/// of four. Both decide the last bits of the result. An embedding of zeros gives not-a-number. The embeddings are read
/// in place during the call. The result holds no buffer.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  an embedding is null
class CosineSimilarity : public Processor<ProcessOptions, EmbeddingData, CosineOutputData> {
public:
    using Processor::Processor;

    CosineOutputData DoProcess(EmbeddingData data) override;
};
