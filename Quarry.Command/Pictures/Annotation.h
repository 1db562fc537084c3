#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace quarry::command {

/// The frame with its foreground tinted and outlined.
cv::Mat Mark(const cv::Mat& frame, const cv::Mat& foreground);

/// The frame with a rectangle: green where the target was found, red where it was not.
cv::Mat MarkTarget(const cv::Mat& frame, const cv::Rect& target, bool found);

/// The picture with a green rectangle around everything that was found.
cv::Mat MarkFound(const cv::Mat& picture, const std::vector<cv::Rect>& found);

/// The picture with a green line around a region.
cv::Mat OutlineRegion(const cv::Mat& picture, const cv::Mat& region);

/// Draws the line into the picture, with a dot at its start.
void MarkLine(cv::Mat& picture, const RelLine& line);

/// The picture over a strip with the caption.
/// Width and height are even, as video codecs want them.
cv::Mat WithCaption(const cv::Mat& picture, const std::string& caption);

}  // namespace quarry::command
