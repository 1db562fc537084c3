#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// That of the frame before, so that the model goes on, or another.
Image Next(Bytes& bytes, const Image& last) {
    return bytes.Below(3) == 0 ? bytes.Frame() : bytes.Frame(last.width, last.height);
}

void CheckResult(const BackgroundResult& result, const Image& frame) {
    const Image& background = *result.BackgroundImage;
    Require(background.width == frame.width && background.height == frame.height, "the result has the frame's size");
    Require(background.timestamp == frame.timestamp && result.ReservedImage->timestamp == frame.timestamp,
            "the result has the frame's time");
    const auto isMask = [](uint8_t byte) { return byte == 0 || byte == 255; };
    Require(
        std::all_of(result.ForegroundMask, result.ForegroundMask + std::ptrdiff_t{frame.width} * frame.height, isMask),
        "a pixel is foreground or not");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const BackgroundOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(),
                                       bytes.Rarely() ? bytes.Any<int32_t>() : bytes.Below(500),
                                       bytes.Real<float>() * 64.0F, bytes.Real<float>() * 8.0F};
    const RawHandle handle = Created(CreateCVBackgroundModel, options);
    Image image = bytes.Frame();
    Require(!GotResult<BackgroundResult>(handle, [](const BackgroundResult&) {}), "there is no result before a frame");
    for (int frame = bytes.Below(8); frame >= 0; --frame) {
        const bool updated = Updated(handle, BackgroundData{bytes.Any<uint32_t>(), image, bytes.Any<uint64_t>()});
        const bool got = GotResult<BackgroundResult>(handle, [&](const BackgroundResult& result) {
            if (updated) CheckResult(result, image);
        });
        const bool hasPixels = image.width > 0 && image.height > 0;
        Require(got || !updated || !hasPixels, "there is a result after a frame that has pixels");
        image = Next(bytes, image);
    }
    return 0;
}
