#include "Annotation.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace quarry::host {
namespace {

const cv::Scalar kTint(40, 120, 255);  // B, G, R: orange
const cv::Scalar kStrip(32, 28, 26);
const cv::Scalar kInk(235, 240, 240);
constexpr double kTintShare = 0.45;
constexpr int kStripHeight = 32;
constexpr int kMargin = 10;
constexpr double kLargestFontScale = 0.6;

/// Shrinks the text until it fits the strip's width.
double FontScale(const std::string& text, int width) {
    int baseline = 0;
    const int needed = cv::getTextSize(text, cv::FONT_HERSHEY_SIMPLEX, kLargestFontScale, 1, &baseline).width;
    return kLargestFontScale * std::min(1.0, static_cast<double>(width - 2 * kMargin) / needed);
}

}  // namespace

cv::Mat Mark(const cv::Mat& frame, const cv::Mat& foreground) {
    cv::Mat tinted;
    cv::addWeighted(frame, 1 - kTintShare, cv::Mat(frame.size(), frame.type(), kTint), kTintShare, 0, tinted);
    cv::Mat picture = frame.clone();
    tinted.copyTo(picture, foreground);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(foreground, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
    cv::drawContours(picture, contours, -1, kTint, 1, cv::LINE_AA);
    return picture;
}

cv::Mat Annotate(const cv::Mat& frame, const cv::Mat& foreground, const std::string& caption) {
    const int height = frame.rows + frame.rows % 2;
    cv::Mat picture(height + kStripHeight, frame.cols + frame.cols % 2, CV_8UC3, kStrip);
    Mark(frame, foreground).copyTo(picture(cv::Rect({0, 0}, frame.size())));
    cv::putText(picture, caption, {kMargin, height + kStripHeight - kMargin}, cv::FONT_HERSHEY_SIMPLEX,
                FontScale(caption, picture.cols), kInk, 1, cv::LINE_AA);
    return picture;
}

}  // namespace quarry::host
