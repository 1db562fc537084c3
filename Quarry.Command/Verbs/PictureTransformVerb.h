/// @file
/// What the verbs share that make one picture of another.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <opencv2/core.hpp>
#include <string>

namespace quarry::command {

struct OnePictureOptions {
    std::string picture;
    std::string out;
    bool json = false;
};

/// Adds PICTURE, --out and --json.
/// @param result  what is written, for the help: "the turned picture"
void AddPictureOptions(CLI::App& command, OnePictureOptions& options, const std::string& result);

/// Reads the picture, writes what is made of it, and tells its size and the time that the making took.
/// @return the exit code
int RunOverPicture(const OnePictureOptions& options, const std::function<cv::Mat(const cv::Mat& picture)>& make);

}  // namespace quarry::command
