#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Console.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter = R"(Every byte of the difference is |first - second|, 0 to 255:
  mean     over all pixels and their three channels, in grey levels
  changed  share of the pixels that differ in at least one channel
  maximum  the largest of all, in grey levels
The pictures must be of the same size. A difference of a few grey levels is hard to see in
the picture of --out.

Example:
  quarry diff before.png after.png --out difference.png)";

struct Options {
    std::string first;
    std::string second;
    std::string difference;  ///< empty when no picture is wanted
    bool json = false;
};

std::string SizeOf(const cv::Mat& picture) {
    return std::to_string(picture.cols) + " x " + std::to_string(picture.rows);
}

void Write(const Options& options, const cv::Mat& difference, double milliseconds) {
    const DifferenceStatistics statistics = StatisticsOf(difference);
    if (options.json) {
        std::cout << JsonLine({{"first", options.first},
                               {"second", options.second},
                               {"width", difference.cols},
                               {"height", difference.rows},
                               {"mean", statistics.mean},
                               {"changed", statistics.changed},
                               {"maximum", statistics.maximum},
                               {"milliseconds", milliseconds}});
        return;
    }
    std::cout << fmt::format(
        "mean     {:10.4f} grey levels\nchanged  {:10.4f} % of the pixels\nmaximum  {:5}      grey levels\n",
        statistics.mean, statistics.changed * 100, statistics.maximum);
}

int Run(const Options& options) {
    CheckIsNotAnInput("--out", options.difference, {options.first, options.second});
    const cv::Mat first = ReadPicture(options.first);
    const cv::Mat second = ReadPicture(options.second);
    if (first.size() != second.size()) {
        throw Failure(options.second + ": is " + SizeOf(second) + " pixels, but " + options.first + " is " +
                      SizeOf(first));
    }
    std::optional<PictureFile> file;
    if (!options.difference.empty()) file.emplace(options.difference);
    const Stopwatch watch;
    const cv::Mat difference = CloneOf(ImageSubtractor()(ViewOf(first), ViewOf(second)));
    const double milliseconds = watch.Milliseconds();
    if (file) file->Write(difference);
    Write(options, difference, milliseconds);
    return kExitFine;
}

}  // namespace

Verb AddDiff(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("diff", "How two pictures of the same size differ: their absolute difference");
    command->footer(kFooter);
    command->add_option("FIRST", options->first, "Picture to compare")->required();
    command->add_option("SECOND", options->second, "Picture to compare it with")->required();
    command->add_option("--out", options->difference, "Write the difference as a picture here")->check(EndsAsPicture());
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
