#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// Where the target is at first. A window of thousands of pixels takes long and is left out.
PixelRect Target(Bytes& bytes) {
    const auto place = [&] {
        return bytes.Rarely() ? bytes.Any<int16_t>() : static_cast<int16_t>(bytes.Below(80) - 8);
    };
    return {place(), place(), static_cast<int16_t>(bytes.Size(48)), static_cast<int16_t>(bytes.Size(48))};
}

void CheckResult(const MosseTrackerResult& result) {
    Require(result.Found <= 1, "a target is found or not");
    Require(result.Zero[0] == 0 && result.Zero[1] == 0 && result.Zero[2] == 0, "zeros are zero");
    Require(result.TargetRect.Width >= 0 && result.TargetRect.Height >= 0, "a window has no negative side");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const MosseTrackerOptions options = {
        bytes.Any<uint32_t>(), {}, bytes.Rarely() ? bytes.Any<uint32_t>() : static_cast<uint32_t>(bytes.Below(2))};
    const RawHandle handle = Created(CreateCVMosseTracker, options);
    Require((handle != nullptr) == (options.TrackerMode <= 1), "a mode is refused when it is unknown, and only then");
    if (handle == nullptr) return 0;

    bool started = false;
    for (int frame = bytes.Below(6); frame >= 0; --frame) {
        const MosseTrackerData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), Target(bytes)};
        started = Updated(handle, input) || started;
        const bool got = GotResult<MosseTrackerResult>(handle, CheckResult);
        Require(got == started, "there is a result once a frame was taken in");
    }
    return 0;
}
