#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// Where the target is.
struct TrackView {
    cv::Rect target;  ///< the filter's window: as large as was asked for, or a little larger
    bool found;
    double milliseconds;  ///< that the library took for this frame
};

/// Follows one rectangle through a video.
class Tracker {
public:
    /// @param mode    0: careful, 1: adapts faster and is content with less
    /// @param target  in the first frame; all within 16 bits, 2 x 2 pixels or more
    Tracker(uint32_t mode, const cv::Rect& target);

    /// Takes in a packed 8-bit B, G, R frame.
    TrackView Take(const cv::Mat& frame);

private:
    Handle handle;
    PixelRect initial;
};

}  // namespace quarry::host
