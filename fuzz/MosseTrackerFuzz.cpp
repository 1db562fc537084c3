#include <cstddef>
#include <cstdint>
#include <optional>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/MosseTracker.h"
#include "plain/Steps.h"

using namespace quarry::fuzz;

namespace {

/// Where the target is at first. A window of thousands of pixels takes long and is left out.
PixelRect Target(Bytes& bytes) {
    const auto place = [&] {
        return bytes.Rarely() ? bytes.Any<int16_t>() : static_cast<int16_t>(bytes.Below(80) - 8);
    };
    return {place(), place(), static_cast<int16_t>(bytes.Size(48)), static_cast<int16_t>(bytes.Size(48))};
}

bool SamePlace(const PixelRect& a, const PixelRect& b) {
    return a.X == b.X && a.Y == b.Y && a.Width == b.Width && a.Height == b.Height;
}

void CheckResult(const MosseTrackerResult& result, const quarry::plain::MosseTracker& plain) {
    Require(result.Found == (plain.found ? 1 : 0), "a target is found where the plain steps find it, and only there");
    Require(SamePlace(result.TargetRect, plain.Rect()), "the window is where the plain steps put it");
    Require(result.Zero[0] == 0 && result.Zero[1] == 0 && result.Zero[2] == 0, "zeros are zero");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const MosseTrackerOptions options = {
        bytes.Any<uint32_t>(), {}, bytes.Rarely() ? bytes.Any<uint32_t>() : static_cast<uint32_t>(bytes.Below(2))};
    const RawHandle handle = Created(CreateCVMosseTracker, options);
    Require((handle != nullptr) == (options.TrackerMode <= 1), "a mode is refused when it is unknown, and only then");
    if (handle == nullptr) return 0;

    std::optional<quarry::plain::MosseTracker> plain;
    for (int frame = bytes.Below(6); frame >= 0; --frame) {
        const MosseTrackerData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), Target(bytes)};
        if (Updated(handle, input)) {
            if (!plain) plain.emplace(options.TrackerMode, quarry::plain::FrameOf(input.Image), input.InitialRect);
            plain->Update(quarry::plain::FrameOf(input.Image));
        }
        const auto check = [&](const MosseTrackerResult& result) { CheckResult(result, *plain); };
        Require(GotResult<MosseTrackerResult>(handle, check) == plain.has_value(),
                "there is a result once a frame was taken in");
    }
    return 0;
}
