#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/FlameColor.h"
#include "plain/PixelwiseFire.h"
#include "plain/Steps.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVPixelwiseFireProcessor, bytes.Any<ProcessOptions>());
    const FireInputData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull()};
    const auto plain = Plainly([&] { return quarry::plain::Fire(quarry::plain::FrameOf(input.Frame)); });
    const bool succeeded = Processed<FireOutputData>(handle, input, [&](const FireOutputData& result) {
        const Mask& mask = *result.FireMask;
        Require(mask.width == input.Frame.width && mask.height == input.Frame.height, "the mask has the frame's size");
        Require(plain && std::equal(plain->begin<uint8_t>(), plain->end<uint8_t>(), mask.data),
                "the mask is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a frame is refused where the plain steps refuse it");
    return 0;
}
