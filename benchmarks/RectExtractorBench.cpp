#include <cmath>
#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

constexpr double kDegrees = 30;

cv::Mat Plain(const cv::Mat& frame, const cv::Point& center, const cv::Size& size) {
    const auto radians = static_cast<double>(static_cast<float>(kDegrees * CV_PI / 180.0));
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    const int halfWidth = size.width / 2;
    const int halfHeight = size.height / 2;
    const cv::Matx23d matrix(cosine, -sine, center.x - (cosine * halfWidth - sine * halfHeight),  //
                             sine, cosine, center.y - (sine * halfWidth + cosine * halfHeight));
    cv::Mat upright;
    cv::warpAffine(frame, upright, matrix, size, cv::WARP_INVERSE_MAP | cv::INTER_LINEAR);
    return upright;
}

/// A rectangle of half the frame's size about its centre.
void CompareOn(int width, int height, const std::string& input) {
    const cv::Mat frame = MovingSquare(width, height, 0);
    const cv::Point center(width / 2, height / 2);
    const cv::Size size(width / 2, height / 2);
    const RectExtractorData data = {0,
                                    ImageOf(frame),
                                    static_cast<int16_t>(center.x),
                                    static_cast<int16_t>(center.y),
                                    static_cast<int16_t>(size.width),
                                    static_cast<int16_t>(size.height),
                                    kDegrees};
    Compare("RectExtractor", {"", input, 0.98}, Computed([frame, center, size] { return Plain(frame, center, size); }),
            Called<RectExtractorOptions, RectExtractorData, RectExtractorResult>(
                CreateCVRectExtractor, {0, 0, 1}, data, [size](const RectExtractorResult& result) {
                    return BytesOf(cv::Mat(size, CV_8UC3, result.Image->data));
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(640, 480, "640x480");
    CompareOn(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
