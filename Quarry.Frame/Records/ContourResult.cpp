#include <cstring>

#include "Quarry/Memory.h"

ContourResult CreateContourResult(int count) {
    ContourResult result;
    std::memset(&result, 0, sizeof(result));  // the padding is 0 as well
    result.Contour = CreateContour(count);
    return result;
}

void DestroyContourResult(ContourResult* result) {
    if (result != nullptr) DestroyContour(result->Contour);
}
