#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

PointArray* CreatePointArray(int count) {
    auto array = std::make_unique<PointArray>();
    array->Count = count;
    array->Points = quarry::NewArray<FloatPoint>(count).release();
    return array.release();
}

void DestroyPointArray(PointArray*& array) {
    if (array == nullptr) return;
    quarry::DeleteArray(array->Points);
    quarry::DeleteRecord(array);
}
