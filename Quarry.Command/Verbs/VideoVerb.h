#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "SelectedFrames.h"
#include "Verbs.h"

namespace quarry::command {

/// The options of all verbs that play a video.
struct VideoOptions {
    std::string video;
    std::string annotated;  ///< empty when no annotated video is wanted
    bool json = false;
    bool csv = false;
    FrameRange frames;
    int threads = 0;  ///< for OpenCV; 0 is one per core
};

/// @param shown  what the annotated video shows, for the help: "its foreground marked"
void AddVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown);

/// Plays the video, writes a line per frame, and the annotated video when it is wanted. Ctrl-C ends it early; what was
/// written until then is complete.
/// @param label  the label of the progress bar
/// @return the exit code
int RunOverVideo(const VideoOptions& options, const std::string& label, FrameAnalyser& analyser);

/// Adds a verb that has no options but its own and those above.
/// @param shown  as above
Verb AddVideoVerb(CLI::App& commandLine, const FrameVerb& overFrames, const std::string& footer,
                  const std::string& shown);

/// The beginning of a frame's caption, with its number and time. It is empty for a picture.
std::string CaptionStart(const VideoFrame& frame);

}  // namespace quarry::command
