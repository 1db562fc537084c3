#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// The motion in colour over the darkened frame: the hue is its direction, the brightness its speed. A wheel of colours
/// in the corner shows which stands for which direction.
/// @param motion  two floats per pixel, pixels per frame
/// @param scale   the speed that is shown at full brightness, pixels per frame
cv::Mat FlowOver(const cv::Mat& frame, const cv::Mat& motion, double scale);

/// How fast a field moves, in pixels per frame.
struct Speed {
    double mean;
    double maximum;
};
Speed SpeedOf(const cv::Mat& motion);

/// The mean of the values that are numbers, 0 when none is.
float MeanAcross(const std::vector<float>& values);

}  // namespace quarry::command
