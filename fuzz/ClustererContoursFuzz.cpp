#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/ClustererContours.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ClustererOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(), bytes.Real<float>() / 32.0F};
    const RawHandle handle = Created(CreateCVClustererContours, options);
    const ClustererData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull()};
    const auto blobs = Plainly([&] {
        return quarry::plain::Clusters(quarry::plain::FrameOf(input.Image), options.OutlinePrecision,
                                       options.MinContourAreaRate);
    });
    const bool succeeded = Processed<ClustererResult>(handle, input, [&](const ClustererResult& result) {
        Require(blobs && quarry::plain::ClustersOf(result) == *blobs, "there is a cluster for each blob");
    });
    Require(succeeded == blobs.has_value(), "a frame is refused where the plain steps refuse it");
    return 0;
}
