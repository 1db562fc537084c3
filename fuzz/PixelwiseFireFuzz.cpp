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

double Linear(double channel) {
    const double c = channel / 255.0;
    return 100.0 * (c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.4) : c / 12.92);
}

double Root(double t) {
    return t > 0.008856 ? std::pow(t, 1.0 / 3.0) : 7.787 * t + 16.0 / 116.0;
}

bool IsFlame(double L, double a, double b) {
    if (!(a > -23.0 && a < 51.0)) return false;
    const double t1 = 4200.0 - (a + 42.0) * (a + 42.0);
    const double t2 = 1600.0 - (a + 7.0) * (a + 7.0);
    const bool above = a > 17.9 ? L > 59.0 : t1 > 0.0 && L > 34.0 + std::sqrt(t1);
    const bool below = a > 5.0 ? L < -0.54 * a + 92.5 : t2 > 0.0 && L < std::sqrt(t2) + 59.5;
    const double least = a > 4.0 ? 1.1 * a - 12.0 : 0.13 * ((a - 6.0) * (a - 6.0)) - 8.0;
    return above && below && b > least && L > -0.95 * b + 92.0;
}

bool IsFlame(const cv::Vec3b& pixel) {
    const double red = Linear(pixel[2]);
    const double green = Linear(pixel[1]);
    const double blue = Linear(pixel[0]);
    const double x = Root((0.4124 * red + 0.3576 * green + 0.1805 * blue) / 95.047);
    const double y = Root((0.2126 * red + 0.7152 * green + 0.0722 * blue) / 100.0);
    const double z = Root((0.0193 * red + 0.1192 * green + 0.9505 * blue) / 108.883);
    return IsFlame(116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z));
}

cv::Mat Flame(const cv::Mat& frame) {
    CV_Assert(!frame.empty());
    cv::Mat flame(frame.size(), CV_8UC1, cv::Scalar(0));
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) {
            if (IsFlame(frame.at<cv::Vec3b>(y, x))) flame.at<uint8_t>(y, x) = 255;
        }
    }
    std::vector<PixelContour> contours;
    cv::findContours(flame, contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    const auto largest = std::max_element(contours.begin(), contours.end(), [](const auto& a, const auto& b) {
        return cv::contourArea(a) < cv::contourArea(b);
    });
    flame.setTo(0);
    if (largest != contours.end() && cv::contourArea(*largest) > 4.0) {
        cv::drawContours(flame, contours, static_cast<int>(largest - contours.begin()), cv::Scalar(255), cv::FILLED);
    }
    cv::dilate(flame, flame, cv::getStructuringElement(cv::MORPH_ELLIPSE, {11, 11}), {-1, -1}, 2, cv::BORDER_CONSTANT);
    return flame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RawHandle handle = Created(CreateCVPixelwiseFireProcessor, bytes.Any<ProcessOptions>());
    const FireInputData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull()};
    const auto plain = Plainly([&] { return Flame(FrameOf(input.Frame)); });
    const bool succeeded = Processed<FireOutputData>(handle, input, [&](const FireOutputData& result) {
        const Mask& mask = *result.FireMask;
        Require(mask.width == input.Frame.width && mask.height == input.Frame.height, "the mask has the frame's size");
        Require(plain && std::equal(plain->begin<uint8_t>(), plain->end<uint8_t>(), mask.data),
                "the mask is that of the plain steps");
    });
    Require(succeeded == plain.has_value(), "a frame is refused where the plain steps refuse it");
    return 0;
}
