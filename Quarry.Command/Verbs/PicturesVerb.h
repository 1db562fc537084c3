#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "FrameAnalyser.h"

namespace quarry::command {

/// The options of all verbs that analyse pictures.
struct PicturesOptions {
    std::vector<std::string> pictures;
    std::string annotated;  ///< empty when no annotated picture is wanted
    bool json = false;
};

/// @param read   what is done with the pictures, for the help: "Pictures to search"
/// @param shown  what the annotated picture shows, for the help: "the region outlined"
void AddPicturesOptions(CLI::App& command, PicturesOptions& options, const std::string& read, const std::string& shown);

/// Checks that an annotated picture is wanted of one picture only, and does not overwrite it.
/// @throws CLI::ValidationError  it is not so
void CheckAnnotated(const PicturesOptions& options);

/// Analyses the pictures and writes a line for each one, and the annotated picture when it is wanted. It goes on after
/// a picture that fails.
/// @param label  the label of the progress bar
/// @return the exit code
int RunOverPictures(const PicturesOptions& options, const std::string& label, FrameAnalyser& analyser);

}  // namespace quarry::command
