#include "Quarry.OpenCV/OuterContours.h"

#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "Quarry.OpenCV/ForegroundBox.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/Truncate.h"

namespace quarry {

namespace {

std::vector<std::vector<cv::Point>> BordersOf(const cv::Mat& frame, float precision) {
    constexpr float kEveryPixelAbove = 0.5F;
    const int method = precision > kEveryPixelAbove ? cv::CHAIN_APPROX_NONE : cv::CHAIN_APPROX_TC89_KCOS;
    const cv::Rect box = ForegroundBox(frame);  // black is 0 in grey too
    cv::Mat grey;
    cv::cvtColor(frame(box), grey, cv::COLOR_RGB2GRAY);
    std::vector<std::vector<cv::Point>> borders;
    cv::findContours(grey, borders, cv::RETR_EXTERNAL, method, box.tl());
    return borders;
}

}  // namespace

std::vector<OuterContour> FindOuterContours(const Image& image, float precision, float minAreaRate) {
    const cv::Mat frame = PackedFrame(image);
    std::vector<std::vector<cv::Point>> borders = BordersOf(frame, precision);
    const int threshold = Truncate(static_cast<float>(int64_t{frame.rows} * frame.cols) * minAreaRate);
    std::vector<OuterContour> contours;
    for (std::vector<cv::Point>& border : borders) {
        const double area = cv::contourArea(border, false);
        if (area >= threshold) contours.push_back({std::move(border), area});
    }
    return contours;
}

}  // namespace quarry
