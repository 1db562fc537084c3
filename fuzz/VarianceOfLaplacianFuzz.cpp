#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"

using namespace quarry::fuzz;

namespace {

float Sharpness(const cv::Mat& frame) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    cv::Mat laplacian;
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    const auto narrowed = static_cast<float>(deviation[0]);
    return narrowed * narrowed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVLaplacianVarianceProcessor, bytes.Any<ProcessOptions>());
    const VoLInputData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull()};
    const auto plain = Plainly([&] { return Sharpness(FrameOf(input.Image)); });
    const bool succeeded = Processed<VoLOutputData>(handle, input, [&](const VoLOutputData& result) {
        Require(plain && SameBits(result.Variance, *plain), "the sharpness is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a frame is refused where the plain steps refuse it");
    return 0;
}
