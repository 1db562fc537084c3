#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const TransformOptions options = {bytes.Any<uint32_t>(), bytes.Any<uint32_t>(), bytes.Size(64), bytes.Size(64)};
    const RawHandle handle = Created(CreateCVRotationTransformProcessor, options);
    Image frame = bytes.Frame(options.Width, options.Height);
    if (bytes.Rarely()) frame.width = bytes.Any<int32_t>();  // only the options' size is read
    const RotationTransformData input = {bytes.Any<uint32_t>(), frame, bytes.Real<double>() * 360.0,
                                         bytes.Real<double>() * 2.0};
    Processed<TransformResult>(handle, input, [&](const TransformResult& result) {
        const Image& turned = *result.ResultImage;
        Require(turned.width == options.Width && turned.height == options.Height, "the picture has the options' size");
        Require(turned.stride == frame.stride && turned.timestamp == frame.timestamp,
                "the picture has the frame's stride and time");
    });
    return 0;
}
