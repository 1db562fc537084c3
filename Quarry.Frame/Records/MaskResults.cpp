#include "Quarry/Memory.h"

ContourMaskProcessorResult CreateContourMaskProcessorResult(int width, int height) {
    return {0, CreateMask(width, height)};
}

void DestroyContourMaskProcessorResult(ContourMaskProcessorResult* result) {
    if (result != nullptr) DestroyMask(result->Mask);
}

FireOutputData CreateFireOutputData(int width, int height) {
    return {0, CreateMask(width, height)};
}

void DestroyFireOutputData(FireOutputData* result) {
    if (result != nullptr) DestroyMask(result->FireMask);
}
