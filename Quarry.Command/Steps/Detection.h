#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// Makes a detector and checks that its model can be used.
/// @throws Failure  there is no such model or it cannot be read
CascadeDetector OpenDetector(const CascadeDetector::Options& options);

struct DetectionResult {
    std::vector<cv::Rect> found;  ///< pixels of the picture
    double milliseconds;          ///< the time that the library took
};

/// Searches a packed 8-bit B, G, R picture.
/// @param area  the part that is searched, in fractions of the picture
/// @throws std::invalid_argument  the area is less than a pixel wide or high
DetectionResult Search(CascadeDetector& detector, const cv::Mat& picture, const RelRect& area = kWholeFrame);

}  // namespace quarry::command
