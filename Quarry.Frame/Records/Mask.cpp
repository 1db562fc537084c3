#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

Mask* CreateMask(int width, int height) {
    auto mask = std::make_unique<Mask>();
    mask->width = width;
    mask->height = height;
    mask->data = quarry::NewArray<uint8_t>(quarry::Product(width, height)).release();
    return mask.release();
}

void DestroyMask(Mask*& mask) {
    if (mask == nullptr) return;
    quarry::DeleteArray(mask->data);
    quarry::DeleteRecord(mask);
}
