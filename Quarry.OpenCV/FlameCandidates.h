#pragma once

#include <opencv2/core.hpp>

namespace quarry {

/// What marks a pixel of flame in a mask; the others are 0.
constexpr uchar kFlame = 255;

/// The pixels of a frame that have the colour of a flame, by PixelwiseFireProcessor's rules for colours.
/// @param frame  CV_8UC3 in B, G, R order, packed
cv::Mat FlameCandidates(const cv::Mat& frame);

}  // namespace quarry
