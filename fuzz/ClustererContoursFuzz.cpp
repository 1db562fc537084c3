#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"

using namespace quarry::fuzz;

namespace {

bool IsCluster(const Cluster& cluster, const PixelContour& blob, int width, int height) {
    const cv::Moments moments = cv::moments(blob);
    const auto x = static_cast<float>(Truncated(moments.m10 / moments.m00));
    const auto y = static_cast<float>(Truncated(moments.m01 / moments.m00));
    const auto area = static_cast<float>(cv::contourArea(blob) / (width * height));
    const auto perimeter = static_cast<float>(cv::arcLength(blob, true) / width);
    return SameBits(cluster.CenterX, x / static_cast<float>(width)) &&
           SameBits(cluster.CenterY, y / static_cast<float>(height)) && SameBits(cluster.Contour->Area, area) &&
           SameBits(cluster.Contour->Perimeter, perimeter) && IsContour(*cluster.Contour, blob, {}, width, height);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ClustererOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(), bytes.Real<float>() / 32.0F};
    const RawHandle handle = Created(CreateCVClustererContours, options);
    const ClustererData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull()};
    const auto blobs =
        Plainly([&] { return BlobsOf(input.Image, options.OutlinePrecision, options.MinContourAreaRate); });
    const bool succeeded = Processed<ClustererResult>(handle, input, [&](const ClustererResult& result) {
        Require(blobs && result.Count == static_cast<int>(blobs->size()), "there is a cluster for each blob");
        for (std::size_t i = 0; i < blobs->size(); ++i) {
            Require(IsCluster(result.Clusters[i], (*blobs)[i], input.Image.width, input.Image.height),
                    "a cluster is its blob");
        }
    });
    Require(succeeded == blobs.has_value(), "a frame is refused where the plain steps refuse it");
    return 0;
}
