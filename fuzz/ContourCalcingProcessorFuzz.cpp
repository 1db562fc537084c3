#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"

using namespace quarry::fuzz;

namespace {

/// The mask's part of the rectangle; its corner stays known.
struct Region {
    cv::Point corner;
    cv::Mat pixels;
};

Region RegionOf(const ContourCalcingInputData& input) {
    const Mask& mask = input.ObjectMask;
    const auto width = static_cast<float>(mask.width);
    const auto height = static_cast<float>(mask.height);
    const auto pixel = [](float value) { return Truncated(static_cast<double>(value)); };
    const cv::Rect_<int64_t> rect(pixel(input.ObjectRect.X * width), pixel(input.ObjectRect.Y * height),
                                  pixel(input.ObjectRect.Width * width), pixel(input.ObjectRect.Height * height));
    const cv::Mat whole(mask.height, mask.width, CV_8UC1, mask.data, static_cast<std::size_t>(mask.width));
    CV_Assert(!whole.empty());
    CV_Assert(rect.x >= 0 && rect.y >= 0 && rect.width >= 0 && rect.height >= 0);
    CV_Assert(rect.x + rect.width <= mask.width && rect.y + rect.height <= mask.height);
    return {cv::Point(rect.tl()), whole(cv::Rect(rect)).clone()};
}

/// In 32 bits, wrapping.
int32_t SquaredDiagonal(const cv::Size& box) {
    const auto width = static_cast<uint32_t>(box.width);
    const auto height = static_cast<uint32_t>(box.height);
    return static_cast<int32_t>(width * width + height * height);
}

/// The contour with the highest rate above 0, the first of equals; empty when there is none.
PixelContour Chosen(const Region& region, const ContourCalcingOptions& options) {
    CV_Assert(options.ApproximationMethod != 0);  // chain codes are no points
    std::vector<PixelContour> contours;
    cv::findContours(region.pixels, contours, cv::RETR_LIST, options.ApproximationMethod);
    PixelContour best;
    double highest = 0;
    for (const PixelContour& contour : contours) {
        double rate = 0;
        if (options.SelectionMode == 0) rate = cv::contourArea(contour);
        if (options.SelectionMode == 1) rate = SquaredDiagonal(cv::boundingRect(contour).size());
        if (rate <= highest) continue;
        highest = rate;
        best = contour;
    }
    return best;
}

bool IsResult(const Contour& result, const PixelContour& contour, const cv::Point& corner, const Mask& mask) {
    if (!IsContour(result, contour, corner, mask.width, mask.height)) return false;
    if (contour.empty()) return result.Area == 0.0F && result.Perimeter == 0.0F;
    const auto width = static_cast<float>(mask.width);
    const auto height = static_cast<float>(mask.height);
    return SameBits(result.Area, static_cast<float>(cv::contourArea(contour)) / (height * width)) &&
           SameBits(result.Perimeter, static_cast<float>(cv::arcLength(contour, true)) / width);
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
    cv::Point corner;
    const auto plain = Plainly([&] {
        const Region region = RegionOf(input);
        corner = region.corner;
        return Chosen(region, options);
    });
    const bool succeeded = Processed<ContourResult>(handle, input, [&](const ContourResult& result) {
        Require(plain && IsResult(*result.Contour, *plain, corner, input.ObjectMask),
                "the contour is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a mask or rectangle is refused where the plain steps refuse it");
    return 0;
}
