#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/ContourIntersectionProcessorPT.h"

using namespace quarry::fuzz;

namespace {

/// Points that are whole twentieths often lie on each other's edges.
Contour OnAGrid(Bytes& bytes) {
    const int count = bytes.Below(20);
    const auto point = [&] {
        return FloatPoint{static_cast<float>(bytes.Below(20)) / 20.0F, static_cast<float>(bytes.Below(20)) / 20.0F};
    };
    return {bytes.Array<FloatPoint>(count, point), count, 0, 0};
}

Contour Outline(Bytes& bytes) {
    Contour contour = bytes.Below(2) == 0 ? bytes.Outline() : OnAGrid(bytes);
    if (bytes.Rarely()) contour.Count = -1 - bytes.Below(std::numeric_limits<int>::max());
    return contour;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle =
        Created(CreateCVContourIntersectionProcessor, bytes.Any<ContourIntersectionProcessorOptions>());
    const ContourIntersectionProcessorData input = {bytes.Any<uint32_t>(), Outline(bytes), Outline(bytes)};
    const Contour& polygon = input.Polygon;
    const Contour& test = input.TestContour;
    const bool complete = test.Count > 0 && test.Points != nullptr && (polygon.Points != nullptr || polygon.Count <= 0);
    const auto plain = Plainly([&] {
        CV_Assert(complete);
        return quarry::plain::PositionOf(quarry::plain::Listed(polygon.Points, polygon.Count),
                                         quarry::plain::Listed(test.Points, test.Count));
    });
    using Result = ContourInstersectionProcessorResult;
    const bool succeeded = Processed<Result>(handle, input, [&](const Result& result) {
        Require(plain && result.Position == *plain, "the position is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "contours are refused where the plain steps refuse them");
    return 0;
}
