#include "Annotation.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace quarry::command {
namespace {

const cv::Scalar kTint(40, 120, 255);  // B, G, R: orange
const cv::Scalar kFound(80, 220, 60);
const cv::Scalar kLost(50, 50, 235);
constexpr int kLine = 3;  // pixels
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

cv::Mat MarkForeground(const cv::Mat& frame, const cv::Mat& foreground) {
    cv::Mat tinted;
    cv::addWeighted(frame, 1 - kTintShare, cv::Mat(frame.size(), frame.type(), kTint), kTintShare, 0, tinted);
    cv::Mat picture = frame.clone();
    tinted.copyTo(picture, foreground);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(foreground, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
    cv::drawContours(picture, contours, -1, kTint, 1, cv::LINE_AA);
    return picture;
}

cv::Mat MarkTarget(const cv::Mat& frame, const cv::Rect& target, bool found) {
    cv::Mat picture = frame.clone();
    cv::rectangle(picture, target, found ? kFound : kLost, kLine);
    return picture;
}

cv::Mat MarkFound(const cv::Mat& picture, const std::vector<cv::Rect>& found) {
    cv::Mat marked = picture.clone();
    for (const cv::Rect& rect : found) cv::rectangle(marked, rect, kFound, kLine);
    return marked;
}

cv::Mat OutlineRegion(const cv::Mat& picture, const cv::Mat& region) {
    cv::Mat outlined = picture.clone();
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(region, contours, cv::RETR_CCOMP, cv::CHAIN_APPROX_NONE);
    cv::drawContours(outlined, contours, -1, kFound, kLine);
    return outlined;
}

void MarkLine(cv::Mat& picture, const RelLine& line) {
    const auto pixel = [&](const FloatPoint& place) {
        return cv::Point(cvFloor(place.X * static_cast<float>(picture.cols)),
                         cvFloor(place.Y * static_cast<float>(picture.rows)));
    };
    cv::line(picture, pixel(line.start), pixel(line.end), kInk, 2, cv::LINE_AA);
    cv::circle(picture, pixel(line.start), 5, kInk, cv::FILLED, cv::LINE_AA);
}

cv::Mat WithCaption(const cv::Mat& picture, const std::string& caption) {
    const int height = picture.rows + picture.rows % 2;
    cv::Mat captioned(height + kStripHeight, picture.cols + picture.cols % 2, CV_8UC3, kStrip);
    picture.copyTo(captioned(cv::Rect({0, 0}, picture.size())));
    cv::putText(captioned, caption, {kMargin, height + kStripHeight - kMargin}, cv::FONT_HERSHEY_SIMPLEX,
                FontScale(caption, captioned.cols), kInk, 1, cv::LINE_AA);
    return captioned;
}

}  // namespace quarry::command
