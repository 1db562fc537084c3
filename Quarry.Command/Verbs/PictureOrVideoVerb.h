/// @file
/// What the verbs share that look for what is not black: in a picture as it is, and in a video at what moves.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <string>

#include "VideoVerb.h"

namespace quarry::command {

/// What is not black in a picture, and what moves in a video.
class Shown {
public:
    /// The frame with the rest black.
    cv::Mat Take(const VideoFrame& frame);

    /// What captions begin with.
    static std::string Place(const VideoFrame& frame);

private:
    BackgroundModel model;  ///< of a video
};

/// @param shown  what the annotated picture or video shows: "the grid drawn"
void AddPictureOrVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown);

/// Plays the video as RunOverVideo does, or takes the picture as its only frame.
/// @return the exit code
int RunOverPictureOrVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb);

/// The verb of an operation that has no options but its own and these.
/// @param shown  as above
Verb AddPictureOrVideoVerb(CLI::App& commandLine, const FrameOperation& operation, const std::string& footer,
                           const std::string& shown);

}  // namespace quarry::command
