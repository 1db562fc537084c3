#pragma once

#include <opencv2/core.hpp>
#include <string>

namespace quarry::host {

/// The frame with its foreground tinted and outlined.
cv::Mat Mark(const cv::Mat& frame, const cv::Mat& foreground);

/// The same over a strip with the caption.
/// Width and height are even, as video codecs want them.
cv::Mat Annotate(const cv::Mat& frame, const cv::Mat& foreground, const std::string& caption);

}  // namespace quarry::host
