#include <cmath>
#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/RectExtractor.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

constexpr double kDegrees = 30;

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
    Compare("RectExtractor", {"", input, 0.98}, Computed([frame, center, size] {
                return quarry::plain::Extracted(frame, {center.x, center.y, size.width, size.height, kDegrees},
                                                cv::INTER_LINEAR);
            }),
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
