#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "FrameAnalyser.h"

namespace quarry::command {

/// What all verbs that go over pictures can be told.
struct PictureOptions {
    std::vector<std::string> pictures;
    std::string annotated;  ///< empty: not wanted
    bool json = false;
};

/// @param read   what is done with the pictures: "Pictures to search"
/// @param shown  what the annotated picture shows: "what was found outlined"
void AddPictureOptions(CLI::App& command, PictureOptions& options, const std::string& read, const std::string& shown);

/// Refuses an annotated picture where it is not that of one picture.
/// @throws CLI::ValidationError  there are more, or it is the one that is read
void CheckAnnotated(const PictureOptions& options);

/// Goes over the pictures and writes a line for each one, and the annotated picture where it is wanted. After a picture
/// that fails it goes on.
/// @param label  of the progress bar
/// @return the exit code
int RunOverPictures(const PictureOptions& options, const std::string& label, FrameByFrame& verb);

}  // namespace quarry::command
