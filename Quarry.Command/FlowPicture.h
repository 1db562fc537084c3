#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// The motion in colour: the hue is its direction, the brightness its speed; what stands still is black.
/// @param motion  two floats per pixel, pixels per frame
/// @param scale   the speed that is shown at full brightness, pixels per frame
cv::Mat FlowPicture(const cv::Mat& motion, double scale);

/// The same over the darkened frame, with the wheel that explains its colours in the corner.
cv::Mat FlowOver(const cv::Mat& frame, const cv::Mat& motion, double scale);

/// Which colour stands for which direction: that in which it lies from the middle.
/// @return with a fourth channel, transparent outside the wheel
cv::Mat ColourWheel(int diameter);

/// How fast a field moves, in pixels per frame.
struct Speed {
    double mean;
    double maximum;
};
Speed SpeedOf(const cv::Mat& motion);

/// The mean of the values that are numbers, 0 when none is.
float MeanAcross(const std::vector<float>& values);

}  // namespace quarry::command
