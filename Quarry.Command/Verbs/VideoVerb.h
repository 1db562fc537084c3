#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "FrameAnalyser.h"
#include "SelectedFrames.h"
#include "Verbs.h"

namespace quarry::command {

/// What all verbs that play a video can be told.
struct VideoOptions {
    std::string video;
    std::string annotated;  ///< empty: not wanted
    bool json = false;
    bool csv = false;
    FrameRange frames;
    int threads = 0;  ///< of OpenCV; 0: as many as there are cores
};

/// @param shown  what the annotated video shows: "its foreground marked"
void AddVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown);

/// Plays the video and writes a line per frame, and the annotated video where it is wanted. Ctrl-C ends it early; what
/// is written is complete then, too.
/// @param label  of the progress bar
/// @return the exit code
int RunOverVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb);

/// The verb of an operation that has no options but its own and these.
/// @param shown  as above
Verb AddVideoVerb(CLI::App& commandLine, const FrameOperation& operation, const std::string& footer,
                  const std::string& shown);

}  // namespace quarry::command
