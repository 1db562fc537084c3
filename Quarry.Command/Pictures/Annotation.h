#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace quarry::command {

/// The frame with its foreground tinted and outlined.
cv::Mat MarkForeground(const cv::Mat& frame, const cv::Mat& foreground);

/// The frame with a rectangle, which is green when the target was found and red when it was not.
cv::Mat MarkTarget(const cv::Mat& frame, const cv::Rect& target, bool found);

/// The picture with a green rectangle around everything that was found.
cv::Mat MarkFound(const cv::Mat& picture, const std::vector<cv::Rect>& found);

/// The picture with a green line around a region.
cv::Mat OutlineRegion(const cv::Mat& picture, const cv::Mat& region);

/// Draws the line into the picture, with a dot at its start.
void MarkLine(cv::Mat& picture, const RelLine& line);

/// The picture with a strip below that holds the caption.
/// Width and height of the result are even, because the video codec requires it.
cv::Mat WithCaption(const cv::Mat& picture, const std::string& caption);

}  // namespace quarry::command
