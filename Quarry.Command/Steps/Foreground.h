/// @file
/// Frames and options for the operations that look at what is not black.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>

namespace quarry::command {

/// What is smaller than a thousandth of the frame does not count.
inline constexpr ContourClusters::Options kUsualClusters = {0, 0.001F};
inline constexpr ContourGrid::Options kUsualGrid = {0.3F, 0.001F};

/// The frame's foreground; the rest is black.
cv::Mat OnBlack(const cv::Mat& frame, const cv::Mat& foreground);

/// A B, G, R frame for the operations that read R, G, B.
cv::Mat RedFirst(const cv::Mat& frame);

}  // namespace quarry::command
