#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/PixelwiseFire.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

void CompareOn(const cv::Mat& frame, const std::string& name, const std::string& input, double floor) {
    Compare("PixelwiseFire", {name, input, floor},
            Computed([frame] { return quarry::plain::Fire(frame, quarry::plain::Light); }),
            Called<ProcessOptions, FireInputData, FireOutputData>(
                CreateCVPixelwiseFireProcessor, {}, {0, ImageOf(frame)}, [](const FireOutputData& result) {
                    return BytesOf(
                        cv::Mat(result.FireMask->height, result.FireMask->width, CV_8UC1, result.FireMask->data));
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(MovingSquare(640, 480, 0), "no fire", "640x480", 100);
    CompareOn(MovingSquare(1920, 1080, 0), "no fire", "1920x1080", 100);
    for (const cv::Mat& frame : PedestrianFrames(1)) CompareOn(frame, "pedestrians", "768x576", 80);
    CompareOn(FireScene(640, 480), "fire", "640x480", 40);
    CompareOn(FireScene(1920, 1080), "fire", "1920x1080", 40);
    return Run(argc, argv);
}
