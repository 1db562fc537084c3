#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

RectArray* CreateRectArray(int count) {
    auto array = std::make_unique<RectArray>();
    array->Count = count;
    array->Rects = quarry::NewArray<RelRect>(count).release();
    return array.release();
}

void DestroyRectArray(RectArray*& array) {
    if (array == nullptr) return;
    quarry::DeleteArray(array->Rects);
    quarry::DeleteRecord(array);
}
