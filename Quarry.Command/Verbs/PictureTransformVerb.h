/// @file
/// Verbs that make one picture from another.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <opencv2/core.hpp>
#include <string>

namespace quarry::command {

struct PictureTransformOptions {
    std::string picture;
    std::string out;
    bool json = false;
};

/// Adds PICTURE, --out and --json.
/// @param result  what is written, for the help: "the turned picture"
void AddPictureTransformOptions(CLI::App& command, PictureTransformOptions& options, const std::string& result);

/// Reads the picture, writes what `transform` makes of it, and prints the size and the time that it took.
/// @return the exit code
int TransformPicture(const PictureTransformOptions& options,
                     const std::function<cv::Mat(const cv::Mat& picture)>& transform);

}  // namespace quarry::command
