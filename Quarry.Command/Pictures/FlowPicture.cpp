#include "FlowPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace quarry::command {
namespace {

constexpr double kDarkened = 0.4;
constexpr int kWheelMargin = 8;     // pixels
constexpr int kLargestWheel = 72;   // pixels
constexpr int kWheelsPerFrame = 5;  // the wheel is at most a fifth of the frame wide and high
constexpr double kRimGrey = 200;    // the line around the wheel

/// Speed and direction of every pixel. Directions are in degrees, clockwise from the right, because rows go downwards.
void Polar(const cv::Mat& motion, cv::Mat& speed, cv::Mat& direction) {
    std::array<cv::Mat, 2> parts;
    cv::split(motion, parts.data());
    cv::cartToPolar(parts[0], parts[1], speed, direction, true);
}

/// The share of full brightness, 0..1.
cv::Mat BrightnessOf(const cv::Mat& speed, double scale) {
    cv::Mat brightness;
    cv::min(speed / scale, 1.0, brightness);
    return brightness;
}

cv::Mat Coloured(const cv::Mat& direction, const cv::Mat& brightness) {
    const cv::Mat full(direction.size(), CV_32FC1, cv::Scalar(1));
    const std::array<cv::Mat, 3> parts = {direction, full, brightness};
    cv::Mat picture;
    cv::merge(parts.data(), parts.size(), picture);
    cv::cvtColor(picture, picture, cv::COLOR_HSV2BGR);
    picture.convertTo(picture, CV_8U, 255);
    return picture;
}

/// A field that leads away from its middle, one pixel per frame at its border.
cv::Mat FieldOfWheel(int diameter) {
    cv::Mat field(diameter, diameter, CV_32FC2);
    const float radius = static_cast<float>(diameter) / 2;
    for (int row = 0; row < diameter; ++row) {
        for (int column = 0; column < diameter; ++column) {
            field.at<cv::Vec2f>(row, column) = {(static_cast<float>(column) + 0.5F) / radius - 1,
                                                (static_cast<float>(row) + 0.5F) / radius - 1};
        }
    }
    return field;
}

cv::Mat Disc(int diameter) {
    cv::Mat disc(diameter, diameter, CV_8UC1, cv::Scalar(0));
    cv::circle(disc, {diameter / 2, diameter / 2}, diameter / 2 - 1, 255, cv::FILLED, cv::LINE_AA);
    return disc;
}

/// Which colour stands for which direction: that in which it lies from the middle.
cv::Mat ColourWheel(int diameter) {
    cv::Mat speed;
    cv::Mat direction;
    Polar(FieldOfWheel(diameter), speed, direction);
    return Coloured(direction, BrightnessOf(speed, 1));
}

}  // namespace

cv::Mat FlowOver(const cv::Mat& frame, const cv::Mat& motion, double scale) {
    cv::Mat speed;
    cv::Mat direction;
    Polar(motion, speed, direction);
    const cv::Mat brightness = BrightnessOf(speed, scale);
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    grey.convertTo(grey, CV_32F, kDarkened);
    cv::Mat dark;
    cv::multiply(grey, 1 - brightness, dark, 1, CV_8U);
    cv::cvtColor(dark, dark, cv::COLOR_GRAY2BGR);
    cv::Mat picture = Coloured(direction, brightness) + dark;

    const int diameter = std::min(kLargestWheel, std::min(frame.cols, frame.rows) / kWheelsPerFrame);
    if (diameter > 2 * kWheelMargin) {
        const cv::Mat wheel = ColourWheel(diameter);
        const cv::Point corner(frame.cols - diameter - kWheelMargin, kWheelMargin);
        wheel.copyTo(picture(cv::Rect(corner, wheel.size())), Disc(diameter) > 127);
        const cv::Point middle = corner + cv::Point(diameter / 2, diameter / 2);
        cv::circle(picture, middle, diameter / 2, cv::Scalar::all(kRimGrey), 1, cv::LINE_AA);
    }
    return picture;
}

}  // namespace quarry::command
