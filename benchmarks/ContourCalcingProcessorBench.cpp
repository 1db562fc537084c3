#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/ContourCalcingProcessor.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

std::string BytesOf(const quarry::plain::Outline& outline) {
    std::vector<float> numbers = outline.places;
    numbers.insert(numbers.end(), {outline.area, outline.perimeter});
    return quarry::bench::BytesOf(cv::Mat(numbers));
}

quarry::plain::Outline Plain(const cv::Mat& mask, const cv::Rect& rect) {
    return quarry::plain::ObjectOutline(mask, rect, cv::CHAIN_APPROX_SIMPLE, 0);
}

void CompareOn(const cv::Size& size, const std::string& input, double floor) {
    const cv::Mat mask = quarry::test::ObjectMask(size.width, size.height);
    const cv::Rect rect(size.width / 4, size.height / 4, size.width / 2, size.height / 2);
    const Way plain{[=] { benchmark::DoNotOptimize(Plain(mask, rect)); }, [=] { return BytesOf(Plain(mask, rect)); }};
    Compare("ContourCalcingProcessor", {"", input, floor}, plain,
            Called<ContourCalcingOptions, ContourCalcingInputData, ContourResult>(
                CreateCVContourCalculator, {0, {}, cv::CHAIN_APPROX_SIMPLE, 0},
                {0, {mask.data, mask.cols, mask.rows}, {0.25F, 0.25F, 0.5F, 0.5F}},
                [](const ContourResult& result) { return BytesOf(quarry::plain::OutlineOf(*result.Contour)); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn({640, 480}, "640x480", 1.8);
    CompareOn({1920, 1080}, "1920x1080", 4);
    return Run(argc, argv);
}
