#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/ClustererContours.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

constexpr float kPrecision = 0.5F;
constexpr float kMinAreaRate = 0.001F;

std::string BytesOf(const std::vector<quarry::plain::Blob>& blobs) {
    std::string bytes;
    for (const auto& [outline, centerX, centerY] : blobs) {
        std::vector<float> numbers = outline.places;
        numbers.insert(numbers.end(), {outline.area, outline.perimeter, centerX, centerY});
        bytes += quarry::bench::BytesOf(cv::Mat(numbers));
    }
    return bytes;
}

std::vector<quarry::plain::Blob> Plain(const cv::Mat& frame) {
    return quarry::plain::Clusters(frame, kPrecision, kMinAreaRate);
}

void CompareOn(const cv::Mat& frame, const std::string& input, double floor) {
    const Way plain{[=] { benchmark::DoNotOptimize(Plain(frame)); }, [=] { return BytesOf(Plain(frame)); }};
    Compare("ClustererContours", {"", input, floor}, plain,
            Called<ClustererOptions, ClustererData, ClustererResult>(
                CreateCVClustererContours, {0, kPrecision, kMinAreaRate}, {0, quarry::test::ImageOf(frame)},
                [](const ClustererResult& result) { return BytesOf(quarry::plain::ClustersOf(result)); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(quarry::test::PaintedObjects(640, 480), "640x480", 1.4);
    CompareOn(quarry::test::PaintedObjects(1920, 1080), "1920x1080", 1.6);
    const cv::Mat pedestrians = quarry::test::ChangedPedestrians();
    if (!pedestrians.empty()) CompareOn(pedestrians, "768x576 pedestrians", 1);
    return Run(argc, argv);
}
