#include <cmath>
#include <cstddef>
#include <cstdint>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// The whole frame, or anything.
RelRect Area(Bytes& bytes) {
    if (!bytes.Rarely()) return {0, 0, 1, 1};
    return {bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    constexpr int kIntersection = 2;
    constexpr int kBhattacharyya = 3;
    constexpr double kRounding = 1e-6;
    Bytes bytes(data, size);
    const ColorComparingOptions options = {bytes.Any<uint32_t>(), bytes.Any<uint32_t>(),
                                           bytes.Rarely() ? bytes.Any<int32_t>() : bytes.Below(6)};
    const RawHandle handle = Created(CreateCVColorComparator, options);
    const Image first = bytes.FrameOrNull();
    const bool alike = bytes.Below(2) == 0 && first.data != nullptr;
    const ColorComparingInputData input = {bytes.Any<uint32_t>(), first,
                                           alike ? bytes.Frame(first.width, first.height) : bytes.FrameOrNull(),
                                           Area(bytes)};
    Processed<ColorComparingOutputData>(handle, input, [&](const ColorComparingOutputData& result) {
        const double similarity = result.Similarity;
        Require(!std::isnan(similarity), "a similarity is a number");
        if (options.CompareMethod == 0) Require(std::abs(similarity) <= 1 + kRounding, "a correlation is in -1..1");
        if (options.CompareMethod == kIntersection) {
            Require(0 <= similarity && similarity <= first.width * first.height, "an intersection counts pixels");
        }
        if (options.CompareMethod == kBhattacharyya) {
            Require(0 <= similarity && similarity <= 1 + kRounding, "a Bhattacharyya distance is in 0..1");
        }
    });
    return 0;
}
