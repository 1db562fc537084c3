#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

OFLineResult CreateOFLineResult(int count) {
    OFLineResult result;  // `Unwritten` stays as it is
    result.Values = quarry::NewZeroedArray<float>(count).release();
    result.ValuesCount = count;
    return result;
}

void DestroyOFLineResult(OFLineResult* result) {
    if (result != nullptr) quarry::DeleteArray(result->Values);
}
