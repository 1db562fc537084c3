#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// How far the mean of many whites may lie above white.
constexpr float kRounding = 1e-4F;

/// The points of a body. Their number is not read.
PointArray Keypoints(Bytes& bytes) {
    PointArray points;
    points.Count = bytes.Any<int32_t>();
    points.Points = bytes.Rarely() ? nullptr : bytes.Points(17);
    return points;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    cv::setRNGSeed(bytes.Any<uint8_t>());  // the clusters' first centres are drawn from it
    const RawHandle handle = Created(CreateCVKMeanColorExtractor, bytes.Any<KMeanOptions>());
    const KMeanData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), Keypoints(bytes)};
    Processed<KMeanResult>(handle, input, [&](const KMeanResult& result) {
        Require(result.Count == 4, "there are two colours for each of two areas");
        const auto isShare = [](float value) { return 0 <= value && value <= 1 + kRounding; };
        Require(std::all_of(result.Colors, result.Colors + 12, isShare), "a channel is in 0..1");
    });
    return 0;
}
