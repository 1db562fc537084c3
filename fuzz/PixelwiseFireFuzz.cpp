#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"
#include "support/PlainFlame.h"

using namespace quarry::fuzz;

namespace {

bool IsFlame(const cv::Vec3b& pixel) {
    return quarry::test::PlainIsFlame(quarry::test::PlainLab(pixel[2], pixel[1], pixel[0]));
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
