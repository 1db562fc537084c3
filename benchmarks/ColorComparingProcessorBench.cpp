#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

const RelRect kArea = {0.1F, 0.1F, 0.75F, 0.75F};

cv::Mat PlainHistogram(const cv::Mat& region) {
    constexpr int kHueAndSaturation[] = {0, 1};
    constexpr int kBins[] = {50, 60};
    constexpr float kHues[] = {0, 180};
    constexpr float kSaturations[] = {0, 256};
    const float* ranges[] = {kHues, kSaturations};
    cv::Mat hsv;
    cv::Mat histogram;
    cv::cvtColor(region, hsv, cv::COLOR_BGR2HSV);
    cv::calcHist(&hsv, 1, kHueAndSaturation, cv::noArray(), histogram, 2, kBins, ranges, true, false);
    return histogram;
}

double Plain(const cv::Mat& first, const cv::Mat& second) {
    const auto width = static_cast<float>(first.cols);
    const auto height = static_cast<float>(first.rows);
    const cv::Rect area(static_cast<int>(kArea.X * width), static_cast<int>(kArea.Y * height),
                        static_cast<int>(kArea.Width * width), static_cast<int>(kArea.Height * height));
    return cv::compareHist(PlainHistogram(first(area)), PlainHistogram(second(area)), cv::HISTCMP_CORREL);
}

void CompareOn(int width, int height, const std::string& input) {
    const cv::Mat first = MovingSquare(width, height, 0);
    const cv::Mat second = MovingSquare(width, height, 9);
    Compare("ColorComparingProcessor", {"", input, 0.98}, Computed([first, second] { return Plain(first, second); }),
            Called<ColorComparingOptions, ColorComparingInputData, ColorComparingOutputData>(
                CreateCVColorComparator, {0, 0, cv::HISTCMP_CORREL}, {0, ImageOf(first), ImageOf(second), kArea},
                [](const ColorComparingOutputData& result) { return BytesOf(result.Similarity); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(640, 480, "640x480");
    CompareOn(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
