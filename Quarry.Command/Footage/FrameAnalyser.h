#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>

namespace quarry::command {

/// A frame of a video, or a picture, which is a frame without a time.
struct VideoFrame {
    int index;
    double seconds;
    uint64_t timestamp;  ///< ticks of 100 ns; 0: a picture
    cv::Mat pixels;      ///< 8-bit B, G, R, rows packed
};

/// What a verb makes of a video or of pictures: it takes one frame after the other and is asked about the last one.
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
    /// Asked only of verbs that have --out. Width and height are even for videos, as their codecs want them.
    virtual cv::Mat Annotated() const { return {}; }
    /// What the table of a video ends with, without the number of frames.
    virtual std::string Summary() const { return {}; }
};

/// Makes what takes the frames of one video, by the options that were parsed.
/// @throws CLI::ValidationError  the options contradict each other
/// @throws Failure               a file that they name cannot be used
using Beginning = std::function<std::unique_ptr<FrameByFrame>()>;

/// What can be done with frames: by a verb of its own, and over many videos by the verb `scan`.
struct FrameOperation {
    std::string name;
    std::string description;
    /// Adds the options that its fields depend on.
    std::function<Beginning(CLI::App&)> addOptions;
};

/// The operation's verb, without any options.
CLI::App* AddCommand(CLI::App& commandLine, const FrameOperation& operation, const std::string& footer);

/// The JSON object of a frame that was taken.
nlohmann::ordered_json ObjectOf(const VideoFrame& frame, const FrameByFrame& verb);

}  // namespace quarry::command
