#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/RotationTransformProcessor.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

constexpr double kDegrees = 30;
constexpr double kScale = 1.0;

void CompareOn(int width, int height, const std::string& input) {
    const cv::Mat frame = MovingSquare(width, height, 0);
    Compare("RotationTransformProcessor", {"", input, 0.98},
            Computed([frame] { return quarry::plain::Turned(frame, kDegrees, kScale); }),
            Called<TransformOptions, RotationTransformData, TransformResult>(
                CreateCVRotationTransformProcessor, {0, 0, width, height}, {0, ImageOf(frame), kDegrees, kScale},
                [size = frame.size()](const TransformResult& result) {
                    return BytesOf(cv::Mat(size, CV_8UC3, result.ResultImage->data));
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(640, 480, "640x480");
    CompareOn(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
