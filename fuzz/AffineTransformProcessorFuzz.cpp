#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// Five points, since any other number ends the process.
PointArray FivePoints(Bytes& bytes) {
    const auto point = [&] { return FloatPoint{bytes.Real<float>() * 64.0F, bytes.Real<float>() * 64.0F}; };
    PointArray points;
    points.Count = 5;
    points.Points = bytes.Rarely() ? nullptr : bytes.Array<FloatPoint>(points.Count, point);
    return points;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const TransformOptions options = {bytes.Any<uint32_t>(), bytes.Any<uint32_t>(), bytes.Size(64), bytes.Size(64)};
    const RawHandle handle = Created(CreateCVAffineTransformProcessor, options);
    const AffineTransformData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), FivePoints(bytes),
                                       FivePoints(bytes)};
    Processed<TransformResult>(handle, input, [&](const TransformResult& result) {
        const Image& aligned = *result.ResultImage;
        Require(aligned.width == options.Width && aligned.height == options.Height,
                "the picture has the options' size");
        Require(aligned.stride == options.Width * 3, "the picture is packed");
        Require(aligned.timestamp == input.Frame.timestamp, "the picture has the frame's time");
    });
    return 0;
}
