#pragma once

#include <opencv2/core.hpp>

namespace quarry::command {

/// Shows motion in colours over the darkened frame: the hue is its direction and the brightness its speed. A wheel in
/// the corner explains the colours.
/// @param motion  two floats per pixel, pixels per frame
/// @param scale   the speed that is shown at full brightness, pixels per frame
cv::Mat FlowOver(const cv::Mat& frame, const cv::Mat& motion, double scale);

}  // namespace quarry::command
