/// @file
/// Verbs that analyse what is not black in a picture, or what moves in a video.
#pragma once

#include <string>

#include "VideoVerb.h"

namespace quarry::command {

/// Adds a verb that plays a video as RunOverVideo does, or analyses a picture. It has no options but its own, INPUT,
/// --out and --json.
/// @param shown  what the annotated picture or video shows, for the help: "the grid drawn"
Verb AddPictureOrVideoVerb(CLI::App& commandLine, const FrameVerb& overFrames, const std::string& footer,
                           const std::string& shown);

}  // namespace quarry::command
