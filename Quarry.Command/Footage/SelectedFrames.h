#pragma once

#include <climits>
#include <memory>
#include <string>

#include "FrameSource.h"
#include "VideoFrame.h"

namespace quarry::command {

/// The frames of a video that are used.
struct FrameRange {
    int first = 0;      ///< index of the first frame
    int end = INT_MAX;  ///< index of the frame after the last
    int every = 1;      ///< 2 uses every second frame of the range
};

/// Reads the frames of a range.
class SelectedFrames {
public:
    /// @param video  as OpenFrames takes it
    /// @throws Failure  it cannot be opened
    SelectedFrames(const std::string& video, const FrameRange& range);

    /// @return false after the last frame
    bool Next(VideoFrame& frame);

    /// The rate of the selected frames: with `every` of 2 it is half of the video's.
    double framesPerSecond() const { return source->framesPerSecond() / range.every; }
    /// How many frames will come, 0 when the number is unknown.
    int expected() const;

private:
    FrameRange range;
    std::unique_ptr<FrameSource> source;
    int index = -1;  ///< of the last frame
    cv::Mat pixels;
};

}  // namespace quarry::command
