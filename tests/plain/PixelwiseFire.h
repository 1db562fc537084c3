#pragma once

#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "plain/FlameColor.h"

/// The pixels of a fire, in plain steps.
namespace quarry::plain {

/// 255 where a pixel has the colour of flames.
inline cv::Mat FlameColors(const cv::Mat& frame, double (*light)(int) = TabledLight) {
    CV_Assert(!frame.empty());
    cv::Mat candidates(frame.size(), CV_8UC1);
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) {
            const auto& pixel = frame.at<cv::Vec3b>(y, x);
            candidates.at<uint8_t>(y, x) = PlainIsFlame(PlainLab(pixel[2], pixel[1], pixel[0], light)) ? 255 : 0;
        }
    }
    return candidates;
}

/// Every pixel spread twice over an ellipse about it, 11 pixels wide and high.
inline cv::Mat Grown(const cv::Mat& mask) {
    const cv::Mat ellipse = cv::getStructuringElement(cv::MORPH_ELLIPSE, {11, 11}, {5, 5});
    cv::Mat grown;
    cv::dilate(mask, grown, ellipse, {-1, -1}, 2, cv::BORDER_CONSTANT);
    return grown;
}

/// The largest region in the colour of flames, the first of equals, filled and grown; nothing for 4 pixels or fewer.
inline cv::Mat Fire(const cv::Mat& frame, double (*light)(int) = TabledLight) {
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(FlameColors(frame, light), contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    double bestArea = 0;
    int best = 0;
    for (std::size_t i = 0; i < contours.size(); ++i) {
        const double area = cv::contourArea(contours[i]);
        if (area <= bestArea) continue;
        bestArea = area;
        best = static_cast<int>(i);
    }
    cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8UC1);
    if (bestArea > 4.0) cv::drawContours(mask, contours, best, cv::Scalar(255), cv::FILLED);
    return Grown(mask);
}

}  // namespace quarry::plain
