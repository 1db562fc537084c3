#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry.OpenCV/BackgroundUpdating.h"

namespace {

using namespace quarry::bench;

/// The speck filter as it is described, pixel by pixel.
void Plain(cv::Mat& mask) {
    for (int row = 1; row < mask.rows - 1; ++row) {
        const uint8_t* const above = mask.ptr(row - 1);
        uint8_t* const here = mask.ptr(row);
        const uint8_t* const below = mask.ptr(row + 1);
        for (int column = 1; column < mask.cols - 1; ++column) {
            int sum = 0;
            for (int c = column - 1; c <= column + 1; ++c) sum += above[c] + here[c] + below[c];
            here[column] = sum >= 3 * 255 && here[column] == 255 ? 255 : 0;
        }
    }
}

/// Some people and the noise of a camera: one pixel in 200 is a speck.
cv::Mat ForegroundMask(const cv::Size& size) {
    cv::RNG random(1);
    cv::Mat noise(size, CV_16U);
    random.fill(noise, cv::RNG::UNIFORM, 0, 200);
    cv::Mat mask = noise == 0;
    for (int person = 0; person < 8; ++person) {
        const cv::Point centre(random.uniform(0, size.width), random.uniform(0, size.height));
        cv::ellipse(mask, centre, {size.width / 40, size.height / 12}, 0, 0, 360, cv::Scalar(255), cv::FILLED);
    }
    return mask;
}

/// The filter works in place, so either way begins with a copy.
Way Filtered(const cv::Mat& mask, void (*filter)(cv::Mat&)) {
    return Computed([mask, filter, buffer = cv::Mat(mask.size(), CV_8U)] {
        cv::Mat copy = buffer;
        mask.copyTo(copy);
        filter(copy);
        return copy;
    });
}

void CompareOn(const cv::Size& size, const std::string& input) {
    const cv::Mat mask = ForegroundMask(size);
    Compare("BackgroundUpdating", {"DeNoise", input, 8.0}, Filtered(mask, Plain),
            Filtered(mask, BackgroundUpdatingSystem::DeNoise));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn({640, 480}, "640x480");
    CompareOn({1920, 1080}, "1920x1080");
    return Run(argc, argv);
}
