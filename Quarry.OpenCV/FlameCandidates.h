#pragma once

#include <opencv2/core.hpp>

namespace quarry {

/// Value of a flame pixel in a mask; the other pixels are 0.
constexpr uchar kFlame = 255;

/// Marks the pixels of a frame that have the colour of a flame by PixelwiseFireProcessor's rules.
/// @param frame  CV_8UC3 in B, G, R order, packed
/// @return CV_8UC1 of the frame's size, kFlame or 0
cv::Mat FlameCandidates(const cv::Mat& frame);

}  // namespace quarry
