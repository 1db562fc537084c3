// Compares an embedding with itself, and is told of a wrong frame.
#include <Quarry/Quarry.h>

#include <cstdio>
#include <vector>

int main() {
    std::vector<float> embedding(512);
    embedding[0] = 3;
    QUARRY_FRAMED(ProcessOptions) options = {0, sizeof(ProcessOptions), {}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(EmbeddingData) input = {0, sizeof(EmbeddingData), {}, 0};
    QUARRY_FRAMED(CosineOutputData) result = {0, sizeof(CosineOutputData), {}, QUARRY_RESULT_TAG};
    input.Record.FirstEmbedding = embedding.data();
    input.Record.SecondEmbedding = embedding.data();
    auto* const data = reinterpret_cast<ProcessData*>(&input.Record);
    auto* const out = reinterpret_cast<ProcessResult*>(&result.Record);

    void* handle = nullptr;
    CreateCVCosineSimilarity(&handle, &options.Record);
    bool refused = false;
    try {
        Process(handle, data, out);
    } catch (const MarshalingException& wrongTag) {
        std::puts(wrongTag.what());
        refused = true;
    }
    input.Tag = QUARRY_INPUT_TAG;
    Process(handle, data, out);
    Dispose(handle);
    std::printf("similarity %g\n", result.Record.Similarity);
    return refused && result.Record.Similarity == 1.0 ? 0 : 1;
}
