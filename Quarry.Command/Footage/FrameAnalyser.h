#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>

#include "VideoFrame.h"

namespace quarry::command {

/// Analyses the frames of a video, or pictures, one after the other. All other functions are about the last frame, but
/// for Summary.
class FrameAnalyser {
public:
    FrameAnalyser() = default;
    FrameAnalyser(const FrameAnalyser&) = delete;
    FrameAnalyser& operator=(const FrameAnalyser&) = delete;
    virtual ~FrameAnalyser() = default;

    virtual void Analyse(const VideoFrame& frame) = 0;

    /// The column heads of the table, without those that say which frame it is.
    virtual std::string TableHead() const = 0;
    virtual std::string TableRow() const = 0;
    /// The members of the JSON object, without those that say which frame it is.
    virtual nlohmann::ordered_json Fields() const = 0;
    /// The frame with the result drawn into it. It is called only for verbs with --out. For videos width and height are
    /// even, because their codec requires it.
    virtual cv::Mat Annotated() const { return {}; }
    /// The end of the last line of a video's table, which begins with the number of frames.
    virtual std::string Summary() const { return {}; }
};

/// Makes the analyser of one video, with the options that were parsed.
/// @throws CLI::ValidationError  the options contradict each other
/// @throws Failure               a file that they name cannot be used
using FrameAnalyserFactory = std::function<std::unique_ptr<FrameAnalyser>()>;

/// The JSON object of the frame that was analysed last.
nlohmann::ordered_json ObjectOf(const VideoFrame& frame, const FrameAnalyser& analyser);

}  // namespace quarry::command
