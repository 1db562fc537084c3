#include "Quarry.OpenCV/FastNlMeansDenoisingFilter.h"

#include <opencv2/photo.hpp>

#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry/Memory.h"

namespace {

constexpr float kLightnessStrength = 10.0F;
constexpr float kColorStrength = 10.0F;
constexpr int kTemplateWindow = 7;  ///< pixels
constexpr int kSearchWindow = 21;   ///< pixels

}  // namespace

FilterResult FastNlMeansDenoisingFilter::DoProcess(FilterData data) {
    const Image& image = data.Image;
    const bool empty = quarry::Product(image.width, image.height) <= 0;
    if (!empty) quarry::CheckRoomForPackedFrame("FilterData.Image", image.width, image.height, image.stride);
    quarry::PendingResult result(CreateFilterResult(image.width, image.height, image.stride, image.timestamp),
                                 DestroyFilterResult);
    if (!empty) {
        cv::fastNlMeansDenoisingColored(quarry::PackedFrame(image), quarry::PackedFrame(*result->Image),
                                        kLightnessStrength, kColorStrength, kTemplateWindow, kSearchWindow);
    }
    return result.HandOver();
}

void FastNlMeansDenoisingFilter::DoDisposeData(FilterResult* result) {
    DestroyFilterResult(result);
}
