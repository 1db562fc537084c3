#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

float Plain(const cv::Mat& frame) {
    cv::Mat grey;
    cv::Mat laplacian;
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::meanStdDev(laplacian, mean, deviation);
    const auto narrowed = static_cast<float>(deviation[0]);
    return narrowed * narrowed;
}

void CompareOn(const cv::Mat& frame, const std::string& input) {
    Compare("VarianceOfLaplacian", {"", input, 4.5}, Computed([frame] { return Plain(frame); }),
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
