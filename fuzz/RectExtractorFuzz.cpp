#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// Around a frame, at times anywhere.
int16_t Place(Bytes& bytes) {
    return bytes.Rarely() ? bytes.Any<int16_t>() : static_cast<int16_t>(bytes.Below(80) - 8);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RectExtractorOptions options = {bytes.Any<uint32_t>(), bytes.Any<uint32_t>(),
                                          static_cast<uint16_t>(bytes.Below(3))};
    const RawHandle handle = Created(CreateCVRectExtractor, options);
    const RectExtractorData input = {
        bytes.Any<uint32_t>(),
        bytes.Frame(),
        Place(bytes),
        Place(bytes),
        static_cast<int16_t>(bytes.Size(80)),
        static_cast<int16_t>(bytes.Size(80)),
        bytes.Real<double>() * 360.0,
    };
    Processed<RectExtractorResult>(handle, input, [&](const RectExtractorResult& result) {
        const Image& cut = *result.Image;
        Require(cut.width == input.Width && cut.height == input.Height && cut.timestamp == input.Image.timestamp,
                "the cut has the size that was asked for and the frame's time");
        Require(cut.stride == input.Image.stride / input.Image.width * cut.width,
                "the cut has the frame's bytes per pixel");
    });
    return 0;
}
