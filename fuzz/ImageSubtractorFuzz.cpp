#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVImageAbsSubtractor, bytes.Any<BinaryImageOperationOptions>());
    const Image first = bytes.FrameOrNull();
    Image second = bytes.Frame(first.data != nullptr ? first.width : 0, first.data != nullptr ? first.height : 0);
    second.width = bytes.Any<int32_t>();
    second.height = bytes.Any<int32_t>();
    const BinaryImageOperationData input = {bytes.Any<uint32_t>(), first, second};
    Processed<ImageOperationResult>(handle, input, [&](const ImageOperationResult& result) {
        const Image& difference = *result.Image;
        Require(difference.width == first.width && difference.height == first.height &&
                    difference.stride == first.stride && difference.timestamp == first.timestamp,
                "the result has the first frame's geometry and time");
        for (int i = 0; i < first.width * first.height * 3; ++i) {
            Require(difference.data[i] == std::abs(first.data[i] - second.data[i]), "a byte is the difference of two");
        }
    });
    return 0;
}
