#include "Quarry.OpenCV/ImageSubtractor.h"

#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"

namespace {

/// OpenCV works through a frame that is negative both ways as if it had pixels, beyond the end of the result.
void CheckSize(const Image& image) {
    if (image.width < 0 || image.height < 0) {
        throw std::invalid_argument("BinaryImageOperationData.FirstImage: " + std::to_string(image.width) + " x " +
                                    std::to_string(image.height) + " pixels; neither may be negative");
    }
}

}  // namespace

ImageOperationResult ImageSubtractor::DoProcess(BinaryImageOperationData data) {
    const Image& size = data.FirstImage;
    CheckSize(size);
    quarry::CheckRoomForPackedFrame("BinaryImageOperationData.FirstImage", size.width, size.height, size.stride);
    const cv::Mat first = quarry::PackedFrame(data.FirstImage);
    const cv::Mat second = quarry::PackedFrame(data.SecondImage.data, size.width, size.height);
    quarry::PendingResult result(CreateImageOperationResult(size.width, size.height, size.stride, size.timestamp),
                                 DestroyImageOperationResult);
    // A named matrix: OpenCV refuses an empty temporary as an output, and the difference of empty frames is no failure.
    cv::Mat difference = quarry::PackedFrame(*result->Image);
    cv::absdiff(first, second, difference);
    return result.HandOver();
}
