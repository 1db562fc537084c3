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
    cv::Mat frame;
    if (quarry::Product(image.width, image.height) > 0) {
        frame = quarry::PackedFrame(image);  // before the check of the stride: OpenCV refuses null pixels
        quarry::CheckRoomForPackedFrame("FilterData.Image", image.width, image.height, image.stride);
    }
    quarry::PendingResult result(CreateFilterResult(image.width, image.height, image.stride, image.timestamp),
                                 DestroyFilterResult);
    if (!frame.empty()) {
        cv::fastNlMeansDenoisingColored(frame, quarry::PackedFrame(*result->Image), kLightnessStrength, kColorStrength,
                                        kTemplateWindow, kSearchWindow);
    }
    return result.HandOver();
}

void FastNlMeansDenoisingFilter::DoDisposeData(FilterResult* result) {
    DestroyFilterResult(result);
}
