#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/Steps.h"
#include "plain/VarianceOfLaplacian.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVLaplacianVarianceProcessor, bytes.Any<ProcessOptions>());
    const VoLInputData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull()};
    const auto plain = Plainly([&] { return quarry::plain::Sharpness(quarry::plain::FrameOf(input.Image)); });
    const bool succeeded = Processed<VoLOutputData>(handle, input, [&](const VoLOutputData& result) {
        Require(plain && quarry::plain::SameBits(result.Variance, *plain), "the sharpness is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a frame is refused where the plain steps refuse it");
    return 0;
}
