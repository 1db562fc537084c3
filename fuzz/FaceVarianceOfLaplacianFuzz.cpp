#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/FaceVarianceOfLaplacian.h"
#include "plain/Steps.h"

using namespace quarry::fuzz;

namespace {

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
    const auto plain = Plainly([&] {
        return quarry::plain::FaceSharpness(quarry::plain::FrameOf(input.Image), {input.FaceX, input.FaceY},
                                            {input.FaceWidth, input.FaceHeight});
    });
    const bool succeeded = Processed<VoLOutputData>(handle, input, [&](const VoLOutputData& result) {
        Require(plain && quarry::plain::SameBits(result.Variance, *plain), "the sharpness is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a frame or ellipse is refused where the plain steps refuse it");
    return 0;
}
