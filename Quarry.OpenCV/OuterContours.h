#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

namespace quarry {

/// What in a frame is not black, in grey. The frame's pixels are R, G, B; they are read in place and left as they are.
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty
cv::Mat GreyOfRgb(const Image& image);

/// The outermost borders of what is not 0, in the order in which they are found. Holes belong to their blob.
/// @param precision  above 0.5 every border pixel is kept; otherwise, and when it is not a number, contours are
///                   Teh-Chin chains by k-cosine
std::vector<std::vector<cv::Point_<int>>> FindOuterContours(const cv::Mat& grey, float precision);

/// The contours that are not small, in the same order: those whose area is at least `imageArea * minAreaRate`,
/// truncated to whole pixels.
std::vector<std::vector<cv::Point_<int>>> GetValidContours(const std::vector<std::vector<cv::Point_<int>>>& contours,
                                                           float minAreaRate, float imageArea);

}  // namespace quarry
