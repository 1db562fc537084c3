#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

cv::Mat Plain(const cv::Mat& first, const cv::Mat& second) {
    cv::Mat difference;
    cv::absdiff(first, second, difference);
    return difference;
}

/// The same bytes whoever keeps them.
std::string BytesOfResult(const ImageOperationResult& result) {
    const Image& image = *result.Image;
    return BytesOf(cv::Mat(image.height, image.width, CV_8UC3, image.data));
}

void CompareOn(int width, int height, const std::string& input) {
    const cv::Mat first = quarry::test::MovingSquare(width, height, 0);
    const cv::Mat second = quarry::test::MovingSquare(width, height, 4);
    Compare("ImageSubtractor", {"", input, 1.0}, Computed([first, second] { return Plain(first, second); }),
            Called<BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult>(
                CreateCVImageAbsSubtractor, {}, {0, quarry::test::ImageOf(first), quarry::test::ImageOf(second)},
                BytesOfResult));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(640, 480, "640x480");
    CompareOn(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
