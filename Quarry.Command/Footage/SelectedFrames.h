#pragma once

#include <CLI/CLI.hpp>
#include <climits>
#include <memory>
#include <string>

#include "FrameAnalyser.h"
#include "FrameSource.h"

namespace quarry::command {

/// Which frames of a video are taken.
struct FrameRange {
    int first = 0;      ///< index of the first frame that is taken
    int end = INT_MAX;  ///< index of the first one that no longer is
    int every = 1;      ///< 2: every second one
};

/// Adds --frames and --every.
void AddFrameOptions(CLI::App& command, FrameRange& range);

/// The frames of a range, one after the other.
class SelectedFrames {
public:
    /// @param video  as OpenFrames takes it
    SelectedFrames(const std::string& video, const FrameRange& range);

    /// @return false after the last frame
    bool Next(VideoFrame& frame);

    /// Of the selected frames alone.
    double framesPerSecond() const { return source->framesPerSecond() / range.every; }
    /// How many there will be, 0 when it is not known.
    int expected() const;

private:
    FrameRange range;
    std::unique_ptr<FrameSource> source;
    int index = -1;  ///< of the last frame
    cv::Mat pixels;
};

}  // namespace quarry::command
