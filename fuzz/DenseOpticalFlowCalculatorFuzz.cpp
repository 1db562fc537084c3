#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// That of the frame before, so that there is a flow, or another.
Image Next(Bytes& bytes, const Image& last) {
    return bytes.Below(3) == 0 ? bytes.Frame(40) : bytes.Frame(last.width, last.height);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const OFCOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(), bytes.Any<uint32_t>(), bytes.Real<float>()};
    const RawHandle handle = Created(CreateCVDenseOpticalFlowCalculator, options);
    Image image = bytes.Frame(40);
    Require(!GotResult<OFCResult>(handle, [](const OFCResult&) {}), "there is no result before a frame");
    for (int frame = bytes.Below(6); frame >= 0; --frame) {
        const bool updated = Updated(handle, OFCData{bytes.Any<uint32_t>(), image});
        const bool got = GotResult<OFCResult>(handle, [&](const OFCResult& result) {
            if (!updated) return;
            Require(result.FlowMatrix->width == image.width && result.FlowMatrix->height == image.height,
                    "the flow has the frame's size");
        });
        Require(got || !updated, "there is a result after a frame");
        image = Next(bytes, image);
    }
    return 0;
}
