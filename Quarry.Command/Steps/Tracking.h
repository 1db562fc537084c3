#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <optional>

namespace quarry::command {

/// The target in the last frame.
struct TrackedTarget {
    cv::Rect target;  ///< the filter's window, which may be a little larger than the rectangle that it began with
    bool found;
    double milliseconds;  ///< the time that the library took for this frame
};

/// Follows one rectangle through a video.
class Tracker {
public:
    /// @param target  in the first frame: 2 x 2 pixels or more, coordinates and sides within 16 bits
    explicit Tracker(const cv::Rect& target, TrackerMode mode = TrackerMode::Careful);

    /// Searches the next frame, 8-bit B, G, R with packed rows.
    TrackedTarget Update(const cv::Mat& frame);

private:
    MosseTracker tracker;
    std::optional<Box> start;  ///< nothing after the first frame
};

}  // namespace quarry::command
