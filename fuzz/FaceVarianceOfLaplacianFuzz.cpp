#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"

using namespace quarry::fuzz;

namespace {

float Sharpness(const FaceVoLInputData& input) {
    cv::Mat grey;
    cv::cvtColor(FrameOf(input.Image), grey, cv::COLOR_BGR2GRAY);
    cv::Mat mask(grey.size(), CV_8UC1, cv::Scalar(0));
    cv::ellipse(mask, cv::Point(input.FaceX, input.FaceY), cv::Size(input.FaceWidth, input.FaceHeight), 0, 0, 360, 255,
                cv::FILLED);
    cv::bitwise_and(grey, mask, grey);
    cv::Mat laplacian;
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    const auto narrowed = static_cast<float>(deviation[0]);
    return narrowed * narrowed;
}

/// In or around a frame, at times anywhere.
int16_t Pixel(Bytes& bytes) {
    return bytes.Rarely() ? bytes.Any<int16_t>() : static_cast<int16_t>(bytes.Below(100) - 16);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVFaceLaplacianVarianceProcessor, bytes.Any<ProcessOptions>());
    const FaceVoLInputData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), Pixel(bytes),
                                    Pixel(bytes),          Pixel(bytes),        Pixel(bytes)};
    const auto plain = Plainly([&] { return Sharpness(input); });
    const bool succeeded = Processed<VoLOutputData>(handle, input, [&](const VoLOutputData& result) {
        Require(plain && SameBits(result.Variance, *plain), "the sharpness is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a frame or ellipse is refused where the plain steps refuse it");
    return 0;
}
