#include <cmath>
#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/FaceVarianceOfLaplacian.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

/// A face in the middle, three quarters as wide as high.
FaceVoLInputData FaceOf(const cv::Mat& frame, double halfHeight) {
    FaceVoLInputData data{};
    data.Image = quarry::test::ImageOf(frame);
    data.FaceX = static_cast<int16_t>(frame.cols / 2);
    data.FaceY = static_cast<int16_t>(frame.rows / 2);
    data.FaceHeight = static_cast<int16_t>(std::lround(halfHeight));
    data.FaceWidth = static_cast<int16_t>(std::lround(0.75 * halfHeight));
    return data;
}

void CompareOn(const cv::Mat& frame, const std::string& input, double smallFloor, double largeFloor) {
    const auto compare = [&](const char* name, double share, double floor) {
        const FaceVoLInputData data = FaceOf(frame, share * frame.rows);
        Compare(
            "FaceVarianceOfLaplacian", {name, input, floor}, Computed([frame, data] {
                return quarry::plain::FaceSharpness(frame, {data.FaceX, data.FaceY}, {data.FaceWidth, data.FaceHeight});
            }),
            Called<ProcessOptions, FaceVoLInputData, VoLOutputData>(
                CreateCVFaceLaplacianVarianceProcessor, {}, data,
                [](const VoLOutputData& result) { return BytesOf(result.Variance); }));
    };
    compare("half-height 10 %", 0.1, smallFloor);
    compare("half-height 40 %", 0.4, largeFloor);
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(quarry::test::RandomFrame(640, 480, 1), "640x480", 20.0, 4.0);
    CompareOn(quarry::test::RandomFrame(1920, 1080, 1), "1920x1080", 40.0, 6.0);
    return Run(argc, argv);
}
