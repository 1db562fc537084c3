#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

KMeanResult CreateKMeanResult(int count) {
    constexpr int64_t kChannels = 3;
    return {0, count, quarry::NewArray<float>(kChannels * count).release()};
}

void DestroyKMeanResult(KMeanResult* result) {
    if (result != nullptr) quarry::DeleteArray(result->Colors);
}
