#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// What the command line may set of the occupied cells.
struct OccupancySettings {
    cv::Size grid{16, 12};   ///< columns and rows, each no more than the frame has pixels
    float fill = 0.3F;       ///< 0..1 of a cell: it is occupied when more is
    float minArea = 0.001F;  ///< 0..1 of the frame: what is smaller does not count
};

/// The cells of a grid over a frame that are occupied by what is not black.
class OccupancyMeter {
public:
    explicit OccupancyMeter(const OccupancySettings& settings);

    /// One byte per cell: 1 occupied, 0 free.
    /// @param frame  packed 8-bit B, G, R
    cv::Mat Measure(const cv::Mat& frame);

private:
    Handle handle;
    cv::Size grid;
    cv::Mat redFirst;  ///< the frame as this operation reads it
};

}  // namespace quarry::host
