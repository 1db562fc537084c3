#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/OpticalFlowLineProcessor.h"
#include "plain/Steps.h"

using namespace quarry::fuzz;

namespace {

/// A distance per pixel of the line.
std::vector<float> Distances(const OFLineData& input) {
    using quarry::plain::TruncatedProduct;
    const AbsVectorMatrix& field = *input.FlowMatrix;
    const auto pixel = [&](float x, float y) {
        return cv::Point(TruncatedProduct(x, field.width), TruncatedProduct(y, field.height));
    };
    return quarry::plain::Profile(cv::Mat(field.height, field.width, CV_32FC2, field.data),
                                  pixel(input.LineStartX, input.LineStartY), pixel(input.LineEndX, input.LineEndY));
}

AbsVectorMatrix Field(Bytes& bytes) {
    const int width = bytes.Size(24);
    const int height = bytes.Size(24);
    const auto vector = [&] { return AbsVector{bytes.Real<float>() * 16.0F, bytes.Real<float>() * 16.0F}; };
    const int count = width > 0 && height > 0 ? width * height : 0;
    auto* const vectors = bytes.Array<AbsVector>(count, vector);
    return {width, height, bytes.Rarely() ? nullptr : vectors};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVOpticalFlowLineProcessor, bytes.Any<OFLineOptions>());
    OFLineData input = {bytes.Any<uint32_t>(),
                        {},
                        nullptr,
                        bytes.Real<float>(),
                        bytes.Real<float>(),
                        bytes.Real<float>(),
                        bytes.Real<float>(),
                        bytes.Size(200),
                        bytes.Any<uint32_t>()};
    AbsVectorMatrix field = Field(bytes);
    if (!bytes.Rarely()) input.FlowMatrix = &field;
    const bool read = input.FlowMatrix != nullptr && field.data != nullptr && field.width > 0 && field.height > 0;
    const std::vector<float> plain = read ? Distances(input) : std::vector<float>();
    const bool succeeded = Processed<OFLineResult>(handle, input, [&](const OFLineResult& result) {
        Require(result.ValuesCount == input.ValuesCount, "there are as many values as were asked for");
        const std::vector<float> values = quarry::plain::Resampled(plain, result.ValuesCount);
        Require(std::equal(values.begin(), values.end(), result.Values, quarry::plain::SameBits<float>),
                "the values are those of the plain steps");
    });
    Require(succeeded == (input.ValuesCount >= 0), "a negative number of values is refused, and nothing else");
    return 0;
}
