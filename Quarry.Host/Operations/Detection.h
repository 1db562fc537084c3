#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "Operations/Handle.h"

namespace quarry::host {

struct DetectionSettings {
    std::string model;  ///< file with a cascade
    int minSize = 0;    ///< of an object's side, pixels; 0: no limit
    int maxSize = 0;    ///< the same
    uint32_t mode = 0;  ///< 0: the surest, 1: finds the most, 2: between them
};

struct DetectionView {
    std::vector<cv::Rect> found;  ///< in the picture, pixels
    double milliseconds;          ///< that the library took
};

/// All of a picture.
inline const cv::Rect2f kWholePicture(0, 0, 1, 1);

/// Finds objects of the kind that a model was trained for.
class Detector {
public:
    /// @throws Failure  there is no such model or it cannot be read
    explicit Detector(const DetectionSettings& settings);

    /// Searches a packed 8-bit B, G, R picture.
    /// @param area  where, in fractions of width and height
    /// @throws std::invalid_argument  the area is less than a pixel wide or high
    DetectionView Find(const cv::Mat& picture, const cv::Rect2f& area = kWholePicture);

private:
    Handle handle;
};

}  // namespace quarry::host
