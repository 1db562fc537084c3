/// @file
/// What the verbs share that look for what is not black: in a picture as it is, and in a video at what moves.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <optional>
#include <string>

#include "Verbs/OverVideo.h"

namespace quarry::host {

/// What is not black in a picture, and what moves in a video.
class Shown {
public:
    /// @param path  of the picture or video
    explicit Shown(const std::string& path);

    /// The frame with the rest black.
    cv::Mat Take(const VideoFrame& frame);

    /// What captions begin with.
    std::string Place(const VideoFrame& frame) const;

private:
    std::optional<BackgroundModel> model;  ///< of a video
};

/// @param shown  what the annotated picture or video shows: "the grid drawn"
void AddPictureOrVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown);

/// Plays the video as RunOverVideo does, or takes the picture as its only frame.
/// @return the exit code
int RunOverPictureOrVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb);

}  // namespace quarry::host
