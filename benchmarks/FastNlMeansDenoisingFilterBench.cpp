#include <opencv2/photo.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

cv::Mat Plain(const cv::Mat& frame) {
    cv::Mat denoised;
    cv::fastNlMeansDenoisingColored(frame, denoised, 10.0F, 10.0F, 7, 21);
    return denoised;
}

void CompareOn(const cv::Mat& frame, const std::string& input) {
    Compare(
        "FastNlMeansDenoisingFilter", {"", input, 0.98}, Computed([frame] { return Plain(frame); }),
        Called<FilterOptions, FilterData, FilterResult>(
            CreateCVFastNlMeansDenoisingFilter, {}, {0, quarry::test::ImageOf(frame)}, [](const FilterResult& result) {
                const Image& image = *result.Image;
                return BytesOf(cv::Mat(image.height, image.width, CV_8UC3, image.data));
            }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(quarry::test::MovingSquare(640, 480, 0), "640x480");
    CompareOn(quarry::test::MovingSquare(1920, 1080, 0), "1920x1080");
    return Run(argc, argv);
}
