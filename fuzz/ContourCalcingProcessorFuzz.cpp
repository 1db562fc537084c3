#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/ContourCalcingProcessor.h"

using namespace quarry::fuzz;

namespace {

cv::Mat MatrixOf(const Mask& mask) {
    cv::Mat whole(mask.height, mask.width, CV_8UC1, mask.data, static_cast<std::size_t>(mask.width));
    CV_Assert(!whole.empty());
    return whole;
}

/// The rectangle in pixels of the mask, inside which it must lie.
cv::Rect PartOf(const ContourCalcingInputData& input) {
    using quarry::plain::TruncatedProduct;
    const Mask& mask = input.ObjectMask;
    const RelRect& relative = input.ObjectRect;
    const cv::Rect_<int64_t> rect(TruncatedProduct(relative.X, mask.width), TruncatedProduct(relative.Y, mask.height),
                                  TruncatedProduct(relative.Width, mask.width),
                                  TruncatedProduct(relative.Height, mask.height));
    CV_Assert(rect.x >= 0 && rect.y >= 0 && rect.width >= 0 && rect.height >= 0);
    CV_Assert(rect.x + rect.width <= mask.width && rect.y + rect.height <= mask.height);
    return {rect};
}

Mask ObjectMask(Bytes& bytes) {
    // Odd, and so not 0: OpenCV would work its way through millions of rows without pixels.
    if (bytes.Rarely()) return {nullptr, bytes.Any<int32_t>() | 1, bytes.Any<int32_t>() | 1};
    const int width = bytes.Size(64);
    const int height = bytes.Size(64);
    return {bytes.Pixels(width, height, 1), width, height};
}

/// The whole mask, or anything.
RelRect ObjectRect(Bytes& bytes) {
    if (!bytes.Rarely()) return {0, 0, 1, 1};
    return {bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>(), bytes.Real<float>()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ContourCalcingOptions options = {bytes.Any<uint32_t>(), bytes.Any<uint32_t>(),
                                           bytes.Rarely() ? bytes.Any<int32_t>() : 1 + bytes.Below(4),
                                           bytes.Rarely() ? bytes.Any<int32_t>() : bytes.Below(2)};
    const RawHandle handle = Created(CreateCVContourCalculator, options);
    const ContourCalcingInputData input = {bytes.Any<uint32_t>(), ObjectMask(bytes), ObjectRect(bytes)};
    const auto plain = Plainly([&] {
        return quarry::plain::ObjectOutline(MatrixOf(input.ObjectMask), PartOf(input), options.ApproximationMethod,
                                            options.SelectionMode);
    });
    const bool succeeded = Processed<ContourResult>(handle, input, [&](const ContourResult& result) {
        Require(plain && quarry::plain::OutlineOf(*result.Contour) == *plain, "the contour is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a mask or rectangle is refused where the plain steps refuse it");
    return 0;
}
