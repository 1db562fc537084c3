#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVFastNlMeansDenoisingFilter, bytes.Any<FilterOptions>());
    const FilterData input = {bytes.Any<uint32_t>(), bytes.Frame(16)};
    Processed<FilterResult>(handle, input, [&](const FilterResult& result) {
        const Image& image = *result.Image;
        Require(image.width == input.Image.width && image.height == input.Image.height &&
                    image.stride == input.Image.stride && image.timestamp == input.Image.timestamp,
                "the result has the frame's geometry and time");
    });
    return 0;
}
