#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/VarianceOfLaplacian.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

void CompareOn(const cv::Mat& frame, const std::string& input) {
    Compare("VarianceOfLaplacian", {"", input, 4.5}, Computed([frame] { return quarry::plain::Sharpness(frame); }),
            Called<ProcessOptions, VoLInputData, VoLOutputData>(
                CreateCVLaplacianVarianceProcessor, {}, {0, quarry::test::ImageOf(frame)},
                [](const VoLOutputData& result) { return BytesOf(result.Variance); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(quarry::test::RandomFrame(640, 480, 1), "640x480");
    CompareOn(quarry::test::RandomFrame(1920, 1080, 1), "1920x1080");
    return Run(argc, argv);
}
