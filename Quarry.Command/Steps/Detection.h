#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// A detector whose model is known to be one.
/// @throws Failure  there is no such model or it cannot be read
CascadeDetector OpenDetector(const CascadeDetector::Options& options);

struct DetectionView {
    std::vector<cv::Rect> found;  ///< in the picture, pixels
    double milliseconds;          ///< that the library took
};

/// Searches a packed 8-bit B, G, R picture.
/// @param area  where, relative to the picture
/// @throws std::invalid_argument  the area is less than a pixel wide or high
DetectionView Search(CascadeDetector& detector, const cv::Mat& picture, const RelRect& area = kWholeFrame);

}  // namespace quarry::command
