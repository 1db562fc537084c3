#include "PictureTransformVerb.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>

#include "Console.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "Stopwatch.h"

namespace quarry::command {
namespace {

/// OpenCV looks up the pixels by coordinates of 16 bits.
constexpr int kLongestSide = std::numeric_limits<int16_t>::max() - 1;

cv::Mat ReadPictureWithinLimits(const std::string& path) {
    cv::Mat picture = ReadPicture(path);
    if (std::max(picture.cols, picture.rows) <= kLongestSide) return picture;
    throw Failure(fmt::format("{}: is {} x {} pixels; sides of at most {} are possible", path, picture.cols,
                              picture.rows, kLongestSide));
}

void Write(const PictureTransformOptions& options, const cv::Mat& made, double milliseconds) {
    if (options.json) {
        std::cout << JsonLine({{"file", options.picture},
                               {"out", options.out},
                               {"width", made.cols},
                               {"height", made.rows},
                               {"milliseconds", milliseconds}});
        return;
    }
    std::cout << fmt::format("{}\n{} x {} pixels in {:.2f} ms\n", options.out, made.cols, made.rows, milliseconds);
}

}  // namespace

void AddPictureTransformOptions(CLI::App& command, PictureTransformOptions& options, const std::string& result) {
    command.add_option("PICTURE", options.picture, "Picture to read")->required();
    command.add_option("--out", options.out, "Write " + result + " here")->required()->check(EndsAsPicture());
    command.add_flag("--json", options.json, "Write one JSON object instead of text");
}

int TransformPicture(const PictureTransformOptions& options,
                     const std::function<cv::Mat(const cv::Mat& picture)>& transform) {
    CheckIsNotAnInput("--out", options.out, {options.picture});
    const cv::Mat picture = ReadPictureWithinLimits(options.picture);
    PictureFile file(options.out);
    const Stopwatch watch;
    const cv::Mat made = transform(picture);
    const double milliseconds = watch.Milliseconds();
    file.Write(made);
    Write(options, made, milliseconds);
    return kExitFine;
}

}  // namespace quarry::command
