#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

OFCResult* CreateOFCResult(int width, int height) {
    auto result = std::make_unique<OFCResult>();
    result->FlowMatrix = CreateAbsVectorMatrix(width, height);
    return result.release();
}

void DestroyOFCResult(OFCResult*& result) {
    if (result == nullptr) return;
    DestroyAbsVectorMatrix(result->FlowMatrix);
    quarry::DeleteRecord(result);
}
