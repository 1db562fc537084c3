#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <optional>

namespace quarry::command {

/// Where the target is.
struct TrackView {
    cv::Rect target;  ///< the filter's window: as large as was asked for, or a little larger
    bool found;
    double milliseconds;  ///< that the library took for this frame
};

/// Follows one rectangle through a video.
class Tracker {
public:
    /// @param target  in the first frame; all within 16 bits, 2 x 2 pixels or more
    explicit Tracker(const cv::Rect& target, TrackerMode mode = TrackerMode::Careful);

    /// Takes in a packed 8-bit B, G, R frame.
    TrackView Take(const cv::Mat& frame);

private:
    MosseTracker tracker;
    std::optional<Box> start;  ///< until there was a frame
};

}  // namespace quarry::command
