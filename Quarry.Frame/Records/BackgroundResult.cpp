#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

BackgroundResult* CreateBackgroundResult(int width, int height, int stride, unsigned long long timestamp) {
    const auto destroy = [](Image* image) { DestroyImage(image); };
    using OwnedImage = std::unique_ptr<Image, decltype(destroy)>;

    auto result = std::make_unique<BackgroundResult>();
    auto mask = quarry::NewArray<uint8_t>(quarry::Product(width, height));
    OwnedImage background(CreateImage(width, height, stride, timestamp), destroy);
    OwnedImage reserved(CreateImage(width, height, stride, timestamp), destroy);
    result->ForegroundMask = mask.release();
    result->BackgroundImage = background.release();
    result->ReservedImage = reserved.release();
    return result.release();
}

void DestroyBackgroundResult(BackgroundResult*& result) {
    if (result == nullptr) return;
    quarry::DeleteArray(result->ForegroundMask);
    DestroyImage(result->BackgroundImage);
    DestroyImage(result->ReservedImage);
    quarry::DeleteRecord(result);
}
