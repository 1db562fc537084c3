#include "Quarry.OpenCV/RectExtractor.h"

#include <cstdint>
#include <iostream>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry/Memory.h"

namespace {

constexpr uint16_t kBilinear = 1;

/// Whether there are pixels to read and to write.
bool IsWritten(const RectExtractorData& data) {
    return data.Image.height != 0 && data.Image.data != nullptr && data.Width != 0 && data.Height != 0;
}

/// The result's stride: its width times the frame's bytes per pixel.
/// @throws std::invalid_argument  the frame's width is 0, a size is negative, or a stride is too small for packed rows
int StrideOfResult(const RectExtractorData& data) {
    const Image& image = data.Image;
    quarry::CheckFrameSize("RectExtractorData.Image", image.width, image.height);
    quarry::CheckFrameSize("RectExtractorData", data.Width, data.Height);
    if (image.width == 0) {
        throw std::invalid_argument("RectExtractorData.Image.width is 0; at least 1 is needed");
    }
    const int64_t stride = int64_t{image.stride / image.width} * data.Width;
    if (IsWritten(data)) {
        quarry::CheckRoomForPackedFrame("RectExtractorData.Image", image.width, 1, image.stride);
        quarry::CheckRoomForPackedFrame("RectExtractorResult.Image", data.Width, data.Height, stride);
    }
    return static_cast<int>(stride);
}

void PrintSize(const char* name, const cv::Mat& image) {
    std::cout << name << " R=" << image.rows << " C=" << image.cols << "\r";
}

}  // namespace

RectExtractorResult RectExtractor::DoProcess(RectExtractorData data) {
    const Image& image = data.Image;
    const int stride = StrideOfResult(data);
    quarry::PendingResult result(CreateRectExtractorResult(data.Width, data.Height, stride, image.timestamp),
                                 DestroyRectExtractorResult);
    if (!IsWritten(data)) return result.HandOver();

    cv::Mat destination = quarry::PackedFrame(*result->Image);
    ExtractRect(quarry::PackedFrame(image), destination, data.CenterX, data.CenterY, static_cast<float>(data.Angle));
    return result.HandOver();
}

void RectExtractor::DoDisposeData(RectExtractorResult* result) {
    DestroyRectExtractorResult(result);
}

void RectExtractor::ExtractRect(const cv::Mat& source, cv::Mat& destination, int centerX, int centerY,
                                float angle) const {
    const cv::Mat matrix = CVHelper::GetRotationMatrix(destination, cv::Point(centerX, centerY), angle);
    const int interpolation = options.Interpolation == kBilinear ? cv::INTER_LINEAR : cv::INTER_NEAREST;
    try {
        cv::warpAffine(source, destination, matrix, destination.size(), cv::WARP_INVERSE_MAP | interpolation);
    } catch (...) {
        // The lines end in a carriage return alone, so that each overwrites the last one on an operator's terminal.
        PrintSize("SRC", source);
        PrintSize("DST", destination);
        throw;
    }
}
