#include <stdexcept>
#include <string>

#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

ClassificationResult CreateClassificationResult(int count) {
    ClassificationResult result = {0, count, nullptr};
    if (count != 0) result.Responses = quarry::NewArray<Response>(count).release();
    return result;
}

ClassificationResult CreateClassificationResult(int count, RelRect* rects) {
    if (rects == nullptr && count != 0) {
        throw std::invalid_argument("CreateClassificationResult: rects is null while count is " +
                                    std::to_string(count) + "; that many rectangles are needed");
    }
    const ClassificationResult result = CreateClassificationResult(count);
    for (int i = 0; i < count; ++i) result.Responses[i].Rect = rects[i];
    return result;
}

void DestroyClassificationResult(ClassificationResult*& result) {
    if (result == nullptr) return;
    // A record whose count is 0 does not own its array: a host may have put a shared one there.
    if (result->Count != 0) quarry::DeleteArray(result->Responses);
    result = nullptr;
}
