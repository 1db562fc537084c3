#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

struct FireView {
    cv::Mat mask;         ///< 255 flame, 0 none
    double share;         ///< 0..1 of the picture's pixels
    cv::Rect bounds;      ///< around the flame, pixels; empty when there is none
    double milliseconds;  ///< that the library took
};

/// Finds the largest region of flame colours.
class FireFinder {
public:
    FireFinder();

    /// Searches a packed 8-bit B, G, R picture.
    FireView Find(const cv::Mat& picture);

private:
    Handle handle;
};

}  // namespace quarry::host
