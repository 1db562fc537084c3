/// @file
/// Frames and options for the operations that analyse what is not black.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>

#include "VideoFrame.h"

namespace quarry::command {

/// Things smaller than a thousandth of the frame are ignored.
inline constexpr ContourClusters::Options kUsualClusters = {0, 0.001F};
inline constexpr ContourGrid::Options kUsualGrid = {0.3F, 0.001F};

/// The frame with everything black that is not foreground.
cv::Mat OnBlack(const cv::Mat& frame, const cv::Mat& foreground);

/// The frame in the order R, G, B, which some operations read.
cv::Mat RedFirst(const cv::Mat& frame);

/// Blackens what does not move in the frames of a video. Pictures stay as they are.
class ForegroundExtractor {
public:
    cv::Mat Extract(const VideoFrame& frame);

private:
    BackgroundModel model;
};

}  // namespace quarry::command
