#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

FloatImage* CreateFloatImage(int width, int height) {
    auto image = std::make_unique<FloatImage>();
    image->width = width;
    image->height = height;
    image->data = quarry::NewZeroedArray<float>(quarry::Product(width, height)).release();
    return image.release();
}

void DestroyFloatImage(FloatImage*& image) {
    if (image == nullptr) return;
    quarry::DeleteArray(image->data);
    quarry::DeleteRecord(image);
}
