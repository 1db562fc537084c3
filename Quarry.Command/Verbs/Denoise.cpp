#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <cmath>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>

#include "Console.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "Progress.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter = R"(Every pixel becomes the mean of those whose surroundings look like its own (non-local
means), so that noise averages out and edges stay. The strength is fixed. Large pictures
take a while: about half a second per 300,000 pixels.

How much was taken out is told in two ways:
  mean  mean absolute difference between the picture and its denoised copy, in grey levels
  PSNR  the same as a signal-to-noise ratio in dB: the higher, the less has changed (infinite, null in JSON: nothing)

Example:
  quarry denoise night.jpg --out night-clean.png)";

struct Options {
    std::string picture;
    std::string denoised;
    bool json = false;
};

/// How far two pictures are apart.
struct Change {
    double mean;  ///< of the absolute differences, grey levels
    double psnr;  ///< dB, infinite when they are the same
};

Change ChangeOf(const cv::Mat& before, const cv::Mat& after) {
    constexpr double kPeak = 255;
    const double values = static_cast<double>(before.total()) * before.channels();
    const double squared = cv::norm(before, after, cv::NORM_L2SQR) / values;
    return {cv::norm(before, after, cv::NORM_L1) / values, 10 * std::log10(kPeak * kPeak / squared)};
}

void Write(const Options& options, const cv::Mat& denoised, const Change& change, double milliseconds) {
    if (options.json) {
        std::cout << JsonLine({{"file", options.picture},
                               {"out", options.denoised},
                               {"width", denoised.cols},
                               {"height", denoised.rows},
                               {"mean", change.mean},
                               {"psnr", change.psnr},
                               {"milliseconds", milliseconds}});
        return;
    }
    std::cout << options.denoised << '\n'
              << fmt::format("{} x {} pixels in {:.0f} ms; changed by {:.3f} grey levels in the mean, PSNR {:.2f} dB\n",
                             denoised.cols, denoised.rows, milliseconds, change.mean, change.psnr);
}

int Run(const Options& options) {
    CheckIsNotAnInput("--out", options.denoised, {options.picture});
    const cv::Mat picture = ReadPicture(options.picture);
    PictureFile file(options.denoised);
    const Stopwatch watch;
    cv::Mat denoised;
    {
        const Waiting waiting("denoising " + std::to_string(picture.cols) + " x " + std::to_string(picture.rows) +
                              " pixels");
        denoised = CloneOf(FastNlMeansDenoising()(ViewOf(picture)));
    }
    const double milliseconds = watch.Milliseconds();
    file.Write(denoised);
    Write(options, denoised, ChangeOf(picture, denoised), milliseconds);
    return kExitFine;
}

}  // namespace

Verb AddDenoise(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("denoise", "Takes the noise out of a picture, keeping its edges");
    command->footer(kFooter);
    command->add_option("IMAGE", options->picture, "Picture to denoise")->required();
    command->add_option("--out", options->denoised, "Write the denoised picture here")
        ->required()
        ->check(EndsAsPicture());
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
