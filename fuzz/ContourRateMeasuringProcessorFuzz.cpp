#include <cstddef>
#include <cstdint>
#include <limits>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/Steps.h"

using namespace quarry::fuzz;

namespace {

/// With a point at least, since a contour without points ends the process; at times with an impossible number of them.
Contour Outline(Bytes& bytes) {
    Contour contour = bytes.Outline(1);
    if (bytes.Rarely()) contour.Count = -1 - bytes.Below(std::numeric_limits<int>::max());
    return contour;
}

/// Of the frame, at times any, 0 included.
int16_t Side(Bytes& bytes) {
    return bytes.Rarely() ? bytes.Any<int16_t>() : static_cast<int16_t>(1 + bytes.Below(2000));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ContourRateMeasuringOptions options = {bytes.Any<uint32_t>(), bytes.Any<uint32_t>(),
                                                 bytes.Rarely() ? bytes.Any<int32_t>() : 1 + bytes.Below(3)};
    const RawHandle handle = Created(CreateCVContourRateCalculator, options);
    const ContourRateMeasuringInputData input = {
        bytes.Any<uint32_t>(),         Outline(bytes), Outline(bytes), Side(bytes), Side(bytes), bytes.Real<double>(),
        bytes.Real<double>() * 1000.0,
    };
    const bool sized = input.FrameWidth != 0 && input.FrameHeight != 0;
    using Result = ContourRateMeasuringOutputData;
    const bool succeeded = Processed<Result>(handle, input, [&](const Result& result) {
        if (!sized)
            Require(quarry::plain::SameBits(result.Rate, input.DefaultRate), "without a frame the rate is the default");
        if (sized && input.Interval > 0) Require(!(result.Rate < 0), "a rate is not negative");
    });
    Require(succeeded || sized, "nothing is refused without a frame");
    return 0;
}
