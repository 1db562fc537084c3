#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

constexpr int kMostAreas = 3;

/// Large enough to hold the detector's window of 64 x 128 pixels, or any.
Image Frame(Bytes& bytes) {
    if (bytes.Rarely()) return bytes.FrameOrNull();
    const int width = 64 + bytes.Below(12);
    return bytes.Frame(width, 128 + bytes.Below(12));
}

RelRect Area(Bytes& bytes) {
    if (bytes.Below(2) == 0) return {0, 0, 1, 1};
    return {bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>()};
}

ClassificationData Input(Bytes& bytes) {
    const Image frame = Frame(bytes);
    const auto whole = static_cast<uint8_t>(bytes.Below(3));
    const int areas = bytes.Below(kMostAreas + 1);
    const RelRect* const rects = bytes.Array<RelRect>(areas, [&] { return Area(bytes); });
    return {bytes.Any<uint32_t>(),           frame, whole, {}, bytes.Rarely() ? -1 - bytes.Below(99) : areas,
            bytes.Rarely() ? nullptr : rects};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ClassificationOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(),   bytes.Real<double>(),
                                           bytes.Real<double>(),  bytes.Any<uint32_t>(), nullptr};
    const RawHandle handle = Created(CreateCVHogSvmHumanClassifier, options);
    for (int frame = bytes.Below(2); frame >= 0; --frame) {
        Processed<ClassificationResult>(handle, Input(bytes), [&](const ClassificationResult& result) {
            Require(result.Count >= 0 && (result.Responses != nullptr) == (result.Count > 0), "detections are counted");
            Require(std::all_of(result.Responses, result.Responses + result.Count,
                                [](const Response& response) { return response.Weight >= 0; }),
                    "a detection has a weight that is not negative");
        });
    }
    return 0;
}
