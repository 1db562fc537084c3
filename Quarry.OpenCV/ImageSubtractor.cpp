#include "Quarry.OpenCV/ImageSubtractor.h"

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"

ImageOperationResult ImageSubtractor::DoProcess(BinaryImageOperationData data) {
    const Image& size = data.FirstImage;
    quarry::CheckFrameSize("BinaryImageOperationData.FirstImage", size.width, size.height);
    // The headers come before the check of the stride: OpenCV refuses null pixels.
    const cv::Mat first = quarry::PackedFrame(data.FirstImage);
    const cv::Mat second = quarry::PackedFrame(data.SecondImage.data, size.width, size.height);
    quarry::CheckRoomForPackedFrame("BinaryImageOperationData.FirstImage", size.width, size.height, size.stride);
    quarry::PendingResult result(CreateImageOperationResult(size.width, size.height, size.stride, size.timestamp),
                                 DestroyImageOperationResult);
    // The output is a named matrix, since OpenCV refuses an empty temporary one, and empty frames are allowed.
    cv::Mat difference = quarry::PackedFrame(*result->Image);
    cv::absdiff(first, second, difference);
    return result.HandOver();
}
