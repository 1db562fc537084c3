#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

#include "Operations/Handle.h"
#include "Operations/Outline.h"

namespace quarry::host {

/// What the command line may set of the clusters.
struct ClusterSettings {
    float minArea = 0.001F;   ///< 0..1 of the frame: what is smaller is none
    bool everyPixel = false;  ///< of the borders is a point, not only those that shape them
};

/// Something that hangs together.
struct FoundCluster {
    std::optional<cv::Point2f> centre;  ///< of mass, in fractions of the frame; none where there is no area
    Outline outline;
};

/// What is not black in a frame, in pieces that hang together.
class ClusterFinder {
public:
    explicit ClusterFinder(const ClusterSettings& settings);

    /// @param frame  packed 8-bit B, G, R
    std::vector<FoundCluster> Find(const cv::Mat& frame);

private:
    Handle handle;
    cv::Mat redFirst;  ///< the frame as this operation reads it
};

}  // namespace quarry::host
