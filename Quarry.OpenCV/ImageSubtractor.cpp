#include "Quarry.OpenCV/ImageSubtractor.h"

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"

ImageOperationResult ImageSubtractor::DoProcess(BinaryImageOperationData data) {
    const Image& size = data.FirstImage;
    quarry::CheckFrameSize("BinaryImageOperationData.FirstImage", size.width, size.height);
    // The headers before the stride: null pixels are OpenCV's to refuse.
    const cv::Mat first = quarry::PackedFrame(data.FirstImage);
    const cv::Mat second = quarry::PackedFrame(data.SecondImage.data, size.width, size.height);
    quarry::CheckRoomForPackedFrame("BinaryImageOperationData.FirstImage", size.width, size.height, size.stride);
    quarry::PendingResult result(CreateImageOperationResult(size.width, size.height, size.stride, size.timestamp),
                                 DestroyImageOperationResult);
    // A named matrix: OpenCV refuses an empty temporary as an output, and the difference of empty frames is no failure.
    cv::Mat difference = quarry::PackedFrame(*result->Image);
    cv::absdiff(first, second, difference);
    return result.HandOver();
}
