#include "PictureTransformVerb.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>

#include "Console.h"
#include "Media.h"
#include "Options.h"
#include "Stopwatch.h"

namespace quarry::command {
namespace {

/// Pixels are looked up by coordinates of 16 bits.
constexpr int kLongestSide = std::numeric_limits<int16_t>::max() - 1;

cv::Mat ReadPictureWithinLimits(const std::string& path) {
    cv::Mat picture = ReadPicture(path);
    if (std::max(picture.cols, picture.rows) <= kLongestSide) return picture;
    throw Failure(path + Format(": is %d x %d pixels; sides of at most %d are possible", picture.cols, picture.rows,
                                kLongestSide));
}

void Write(const OnePictureOptions& options, const cv::Mat& made, double milliseconds) {
    if (options.json) {
        std::cout << JsonLine({{"file", options.picture},
                               {"out", options.out},
                               {"width", made.cols},
                               {"height", made.rows},
                               {"milliseconds", milliseconds}});
        return;
    }
    std::cout << options.out << '\n' << Format("%d x %d pixels in %.2f ms\n", made.cols, made.rows, milliseconds);
}

}  // namespace

void AddPictureOptions(CLI::App& command, OnePictureOptions& options, const std::string& result) {
    command.add_option("PICTURE", options.picture, "Picture to read")->required();
    command.add_option("--out", options.out, "Write " + result + " here")->required()->check(EndsAsPicture());
    command.add_flag("--json", options.json, "Write one JSON object instead of text");
}

int RunOverPicture(const OnePictureOptions& options, const std::function<cv::Mat(const cv::Mat& picture)>& make) {
    CheckIsNotAnInput("--out", options.out, {options.picture});
    const cv::Mat picture = ReadPictureWithinLimits(options.picture);
    PictureFile file(options.out);
    const Stopwatch watch;
    const cv::Mat made = make(picture);
    const double milliseconds = watch.Milliseconds();
    file.Write(made);
    Write(options, made, milliseconds);
    return kExitFine;
}

}  // namespace quarry::command
