#pragma once

#include <CLI/CLI.hpp>
#include <climits>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>

namespace quarry::host {

/// What all verbs that play a video can be told.
struct VideoOptions {
    std::string video;
    std::string annotated;  ///< empty: not wanted
    bool json = false;
    bool csv = false;
    int first = 0;      ///< index of the first frame that is taken
    int end = INT_MAX;  ///< index of the first one that no longer is
    int every = 1;      ///< 2: every second one
    int threads = 0;    ///< of OpenCV; 0: as many as there are cores
};

/// @param shown  what the annotated video shows: "its foreground marked"
void AddVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown);

/// A frame of the video.
struct VideoFrame {
    int index;
    double seconds;
    uint64_t timestamp;  ///< ticks of 100 ns
    cv::Mat pixels;      ///< 8-bit B, G, R, rows packed
};

/// What a verb makes of a video: it takes one frame after the other and is asked about the last one.
class FrameByFrame {
public:
    FrameByFrame() = default;
    FrameByFrame(const FrameByFrame&) = delete;
    FrameByFrame& operator=(const FrameByFrame&) = delete;
    virtual ~FrameByFrame() = default;

    virtual void Take(const VideoFrame& frame) = 0;

    /// The columns of the table, without those of the frame.
    virtual std::string TableHead() const = 0;
    virtual std::string TableRow() const = 0;
    /// The fields of the JSON object, without those of the frame.
    virtual nlohmann::ordered_json Fields() const = 0;
    /// Width and height are even, as video codecs want them.
    virtual cv::Mat Annotated() const = 0;
    /// What the table ends with, without the number of frames.
    virtual std::string Summary() const = 0;
};

/// Plays the video and writes a line per frame, and the annotated video where it is wanted. Ctrl-C ends it early; what
/// is written is complete then, too.
/// @param label  of the progress bar
/// @return the exit code
int RunOverVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb);

}  // namespace quarry::host
