#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

Image* CreateImage(int width, int height, int stride, unsigned long long timestamp) {
    auto image = std::make_unique<Image>();
    image->width = width;
    image->height = height;
    image->stride = stride;
    image->timestamp = timestamp;
    image->data = quarry::NewArray<uint8_t>(quarry::Product(height, stride)).release();
    return image.release();
}

void DestroyImage(Image*& image) {
    if (image == nullptr) return;
    quarry::DeleteArray(image->data);
    quarry::DeleteRecord(image);
}
