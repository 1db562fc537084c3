#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Console.h"
#include "Library.h"
#include "Media.h"
#include "Progress.h"
#include "Timing.h"
#include "Verbs/Verbs.h"

namespace quarry::host {
namespace {

struct Options {
    std::string video;
    std::string annotated;  ///< empty: not wanted
    bool json = false;
    BackgroundSettings model;
};

std::string TableRow(int frame, double seconds, const BackgroundView& view) {
    char text[128];
    std::snprintf(text, sizeof text, "%5d  %8.3f  %-12s  %12.3f  %8.2f\n", frame, seconds, NameOf(view.state),
                  view.foregroundShare * 100, view.milliseconds);
    return text;
}

std::string Caption(int frame, double seconds, const BackgroundView& view) {
    char text[128];
    std::snprintf(text, sizeof text, "frame %d   %.2f s   %s   foreground %.2f %%", frame, seconds, NameOf(view.state),
                  view.foregroundShare * 100);
    return text;
}

std::string Summary(const std::vector<double>& milliseconds, double shares) {
    char text[128];
    std::snprintf(text, sizeof text, "%zu frames, foreground %.3f %% on average, %.2f ms per frame (median)\n",
                  milliseconds.size(), 100 * shares / static_cast<double>(milliseconds.size()),
                  Quantile(milliseconds, 0.5));
    return text;
}

std::string JsonLine(int frame, uint64_t timestamp, const BackgroundView& view) {
    const nlohmann::ordered_json line = {{"frame", frame},
                                         {"timestamp", timestamp},
                                         {"state", NameOf(view.state)},
                                         {"foreground", view.foregroundShare},
                                         {"milliseconds", view.milliseconds}};
    return line.dump() + "\n";
}

void CheckOutIsNotTheVideo(const Options& options) {
    std::error_code ignored;
    if (std::filesystem::equivalent(options.video, options.annotated, ignored)) {
        throw CLI::ValidationError("--out", options.annotated + " is the video itself");
    }
}

int RunOverVideo(const Options& options) {
    VideoReader video(options.video);
    BackgroundModel model(options.model);
    std::optional<VideoFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated, video.framesPerSecond());
    Progress progress("background", "frames", video.frameCount());

    if (!options.json) std::cout << "frame    time s  state         foreground %        ms\n";
    std::vector<double> milliseconds;
    double shares = 0;
    int frames = 0;
    for (cv::Mat frame; video.Read(frame); ++frames) {
        const uint64_t timestamp = TimestampOf(frames, video.framesPerSecond());
        const double seconds = frames / video.framesPerSecond();
        const BackgroundView view = model.Take(frame, timestamp);
        milliseconds.push_back(view.milliseconds);
        shares += view.foregroundShare;
        if (annotated) annotated->Write(Annotate(frame, view.foreground, Caption(frames, seconds, view)));
        progress.MakeWay();
        std::cout << (options.json ? JsonLine(frames, timestamp, view) : TableRow(frames, seconds, view));
        progress.Advance();
    }
    progress.Clear();
    if (frames == 0) throw Failure(options.video + ": holds no frames");
    if (annotated) annotated->Finish();
    if (!options.json) std::cout << Summary(milliseconds, shares);
    return kExitFine;
}

int Run(const Options& options) {
    CheckOutIsNotTheVideo(options);
    try {
        return RunOverVideo(options);
    } catch (const Failure&) {
        throw;
    } catch (...) {
        throw Failure(options.video + ": " + CurrentReason());
    }
}

CLI::Validator Within(double low, double high) {
    const std::string range = CLI::detail::to_string(low) + " to " + CLI::detail::to_string(high);
    const auto check = [low, high, range](const std::string& text) -> std::string {
        double value = 0;
        const bool fits = CLI::detail::lexical_cast(text, value) && value >= low && value <= high;
        return fits ? "" : "must be a number from " + range + ", not " + text;
    };
    return {check, range};
}

CLI::Validator EndsInAvi() {
    const auto check = [](const std::string& text) -> std::string {
        return std::filesystem::path(text).extension() == ".avi" ? "" : "must end in .avi, not be " + text;
    };
    return {check, "*.avi"};
}

}  // namespace

Verb AddBackground(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand(
        "background", "What moves in a video: learns its background and marks what differs from it");
    command->add_option("VIDEO", options->video, "Video to read")->required();
    command->add_option("--out", options->annotated, "Write the video with its foreground marked here")
        ->check(EndsInAvi());
    command->add_flag("--json", options->json, "Write one JSON object per frame and line instead of a table");
    BackgroundSettings& model = options->model;
    command->add_option("--sensitivity", model.sensitivity, "How small a difference from the background counts")
        ->check(Within(0, 1))
        ->capture_default_str();
    command->add_option("--history", model.history, "Frames of history of the model")
        ->check(Within(1, 100'000))
        ->capture_default_str();
    command->add_option("--adaptation", model.adaptationSeconds, "Seconds in which a learnt background follows changes")
        ->check(Within(0.001, 86'400))
        ->capture_default_str();
    command->add_option("--speedup", model.speedup, "How many times faster it is learnt at first; 0 is no faster")
        ->check(Within(0, 1000))
        ->capture_default_str();
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::host
