#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

constexpr const char* kModel = "/usr/share/opencv4/lbpcascades/lbpcascade_frontalface.xml";

const char* Path(Bytes& bytes) {
    if (!bytes.Rarely()) return kModel;
    constexpr std::array<const char*, 3> kNoModels = {nullptr, "", "no such model"};
    return kNoModels[static_cast<std::size_t>(bytes.Below(3))];
}

/// The whole frame, or anything.
RelRect Area(Bytes& bytes) {
    if (!bytes.Rarely()) return {0, 0, 1, 1};
    return {bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ClassificationOptions options = {
        bytes.Any<uint32_t>(),
        bytes.Real<float>(),
        bytes.Real<double>() * 64.0,
        bytes.Real<double>() * 64.0,
        bytes.Rarely() ? bytes.Any<uint32_t>() : static_cast<uint32_t>(bytes.Below(3)),
        Path(bytes)};
    const RawHandle handle = Created(CreateCVCascadeClassifier, options);
    if (handle == nullptr) return 0;

    for (int frame = bytes.Below(3); frame >= 0; --frame) {
        const Image image = bytes.FrameOrNull();
        const RelRect area = Area(bytes);
        const ClassificationData input = {bytes.Any<uint32_t>(), image,
                                          bytes.Any<uint8_t>(),  {},
                                          bytes.Any<int32_t>(),  bytes.Rarely() ? nullptr : &area};
        Processed<ClassificationResult>(handle, input, [&](const ClassificationResult& result) {
            Require(result.Count >= 0 && (result.Responses != nullptr) == (result.Count > 0), "detections are counted");
            Require(std::all_of(result.Responses, result.Responses + result.Count,
                                [](const Response& response) {
                                    const RelRect& rect = response.Rect;
                                    return rect.X >= 0 && rect.Y >= 0 && rect.X + rect.Width <= 1.001F &&
                                           rect.Y + rect.Height <= 1.001F;
                                }),
                    "a detection lies inside its area");
        });
    }
    return 0;
}
