#include "Quarry.OpenCV/OuterContours.h"

#include <algorithm>
#include <iterator>
#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/Truncate.h"

namespace quarry {

cv::Mat GreyOfRgb(const Image& image) {
    cv::Mat grey;
    cv::cvtColor(PackedFrame(image), grey, cv::COLOR_RGB2GRAY);
    return grey;
}

std::vector<std::vector<cv::Point>> FindOuterContours(const cv::Mat& grey, float precision) {
    constexpr float kEveryPixelAbove = 0.5F;
    const int method = precision > kEveryPixelAbove ? cv::CHAIN_APPROX_NONE : cv::CHAIN_APPROX_TC89_KCOS;
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(grey, contours, cv::RETR_EXTERNAL, method);
    return contours;
}

std::vector<std::vector<cv::Point>> GetValidContours(const std::vector<std::vector<cv::Point>>& contours,
                                                     float minAreaRate, float imageArea) {
    const int threshold = Truncate(imageArea * minAreaRate);
    std::vector<std::vector<cv::Point>> valid;
    std::copy_if(contours.begin(), contours.end(), std::back_inserter(valid),
                 [&](const auto& contour) { return cv::contourArea(contour, false) >= threshold; });
    return valid;
}

}  // namespace quarry
