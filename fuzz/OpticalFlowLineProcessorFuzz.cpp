#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"

using namespace quarry::fuzz;

namespace {

float Length(const cv::Point2f& vector) {
    return std::sqrt(vector.x * vector.x + vector.y * vector.y);
}

/// By Heron's formula, negative to the left of the line.
float Distance(const cv::Point2f& point, const cv::Point2f& start, const cv::Point2f& end) {
    const float a = Length(point - start);
    const float b = Length(point - end);
    const float c = Length(end - start);
    const float s = (a + b + c) / 2.0F;
    const double area = std::sqrt(static_cast<double>((s - a) * s * (s - b) * (s - c)));
    const auto distance = static_cast<float>(2.0 * area / static_cast<double>(c));
    const float cross = (end.x - start.x) * (point.y - start.y) - (end.y - start.y) * (point.x - start.x);
    return cross < 0.0F ? -distance : distance;
}

cv::Point PixelOf(float x, float y, const AbsVectorMatrix& field) {
    return {Truncated(static_cast<double>(x * static_cast<float>(field.width))),
            Truncated(static_cast<double>(y * static_cast<float>(field.height)))};
}

/// A distance per pixel of the line.
std::vector<float> Distances(const OFLineData& input) {
    const AbsVectorMatrix& field = *input.FlowMatrix;
    const cv::Mat flow(field.height, field.width, CV_32FC2, field.data);
    const cv::Point start = PixelOf(input.LineStartX, input.LineStartY, field);
    const cv::Point end = PixelOf(input.LineEndX, input.LineEndY, field);
    cv::LineIterator line(flow, start, end);
    std::vector<float> distances;
    for (int i = 0; i < line.count; ++i, ++line) {
        const cv::Point pixel = line.pos();
        const cv::Point2f moved = cv::Point2f(pixel) + flow.at<cv::Point2f>(pixel);
        distances.push_back(Distance(moved, start, end));
    }
    return distances;
}

int RoundHalfUp(float value) {
    return Truncated(std::floor(static_cast<double>(value) + 0.5));
}

/// The distance that value i of `count` is.
float Sample(const std::vector<float>& distances, int i, int count) {
    const int length = static_cast<int>(distances.size());
    if (length == 0) return 0.0F;
    const int index = count > length
                          ? i / RoundHalfUp(static_cast<float>(count) / static_cast<float>(length))
                          : RoundHalfUp(static_cast<float>(i) * static_cast<float>(length) / static_cast<float>(count));
    return distances[static_cast<std::size_t>(std::min(index, length - 1))];
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
        for (int i = 0; i < result.ValuesCount; ++i) {
            Require(SameBits(result.Values[i], Sample(plain, i, result.ValuesCount)),
                    "the values are those of the plain steps");
        }
    });
    Require(succeeded == (input.ValuesCount >= 0), "a negative number of values is refused, and nothing else");
    return 0;
}
