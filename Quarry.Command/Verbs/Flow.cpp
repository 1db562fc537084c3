#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Annotation.h"
#include "FlowPicture.h"
#include "Foreground.h"
#include "Options.h"
#include "PlotFile.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"
#include "VideoVerb.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(For every frame but the first it finds how far each pixel moved since the frame before. Per
frame it gives the mean and the largest motion, in pixels per frame. In the video of --out
colour is the direction of the motion (a wheel in the corner shows which) and brightness its
speed, up to --scale pixels per frame.

With --line it also measures the motion across a line, e.g. a doorstep: N values from its
start to its end, in pixels per frame, positive to the right of somebody who walks along it.
X and Y are fractions of the frame's width and height. A value may be not a number (null in
JSON) where the motion is nearly none. --plot draws the values and their mean over time; it
needs the packages python3-quarry and python3-matplotlib.

This is slow: some 50 to 500 ms per frame, depending on its size and on --quality. --quality 0
looks at the finest level only and misses fast motion; between 0 and 0.1 nothing is computed
and the motion is 0; above 0.7 it is at its finest and slowest.

Examples:
  quarry flow street.avi --out street-flow.avi
  quarry flow street.avi --line 0.1,0.6,0.9,0.6 --values 64 --plot crossing.svg --json)";

struct Options {
    DenseOpticalFlow::Options flow;
    std::optional<RelLine> line;
    int values = 32;
    double scale = 5;  ///< pixels per frame that are shown at full brightness
    std::string plot;  ///< empty: not wanted
};

class Flow : public FrameAnalyser {
public:
    explicit Flow(const Options& options_) : options(options_), calculator(options_.flow) {}

    void Analyse(const VideoFrame& frame) override {
        last = frame;
        const cv::Mat redFirst = RedFirst(frame.pixels);
        const Stopwatch watch;
        calculator.Update(ViewOf(redFirst));
        const FlowResult field = calculator.Result();
        milliseconds.push_back(watch.Milliseconds());
        motion = MatOf(field);
        speed = SpeedOf(motion);
        if (options.line) {
            const OpticalFlowLine::Values values = measure(field, *options.line, options.values);
            across.assign(values.begin(), values.end());
        }
        if (!options.plot.empty()) {
            plot["x"].push_back(frame.seconds);
            plot["columns"].push_back(across);
        }
    }

    std::string TableHead() const override {
        return std::string("   mean px    max px        ms") + (options.line ? "  across px" : "");
    }

    std::string TableRow() const override {
        const std::string row =
            fmt::format("  {:8.3f}  {:8.2f}  {:8.1f}", speed.mean, speed.maximum, milliseconds.back());
        return options.line ? row + fmt::format("  {:9.3f}", MeanOfNumbers(across)) : row;
    }

    nlohmann::ordered_json Fields() const override {
        nlohmann::ordered_json fields = {
            {"mean", speed.mean}, {"maximum", speed.maximum}, {"milliseconds", milliseconds.back()}};
        if (options.line) fields["line"] = across;
        return fields;
    }

    cv::Mat Annotated() const override {
        cv::Mat picture = FlowOver(last.pixels, motion, options.scale);
        if (options.line) MarkLine(picture, *options.line);
        return WithCaption(
            picture, fmt::format("frame {}   {:.2f} s   motion {:.2f} px/frame in the mean, {:.1f} at most", last.index,
                                 last.seconds, speed.mean, speed.maximum));
    }

    std::string Summary() const override {
        return fmt::format("{:.1f} ms per frame (median)", Quantile(milliseconds, 0.5));
    }

    /// As `quarry.plot` reads it.
    const nlohmann::json& motionOverTime() const { return plot; }

private:
    const Options& options;
    DenseOpticalFlow calculator;
    OpticalFlowLine measure;
    VideoFrame last{};
    cv::Mat motion;  ///< the calculator's own
    Speed speed{};
    std::vector<float> across;
    nlohmann::json plot = {{"title", "Motion across the line, over time"},
                           {"y_label", "place on the line, %"},
                           {"unit", "px"},
                           {"x", nlohmann::json::array()},
                           {"columns", nlohmann::json::array()}};
    std::vector<double> milliseconds;
};

int Run(const VideoOptions& video, const Options& options) {
    CheckIsNotAnInput("--plot", options.plot, {video.video});
    std::optional<PlotFile> plot;
    if (!options.plot.empty()) plot.emplace(options.plot);
    Flow analyser(options);
    const int exitCode = RunOverVideo(video, "flow", analyser);
    if (plot) plot->Draw(analyser.motionOverTime());
    return exitCode;
}

RelLine LineOf(const std::string& text) {
    const auto [x1, y1, x2, y2] = FourShares("--line", text, "X1,Y1,X2,Y2");
    return {{x1, y1}, {x2, y2}};
}

FrameAnalyserFactory AddOwnOptions(CLI::App& command, const std::shared_ptr<Options>& options) {
    command
        .add_option("--detail", options->flow.detail,
                    "How small the things are that may move on their own (default: about 0.45)")
        ->check(Within(0, 1));
    command.add_option("--quality", options->flow.quality, "How much work is done (default: about 0.5)")
        ->check(Within(0, 1));
    CLI::Option* const line = command
                                  .add_option_function<std::string>(
                                      "--line", [options](const std::string& text) { options->line = LineOf(text); },
                                      "Measure the motion across this line, in fractions of width and height")
                                  ->type_name("X1,Y1,X2,Y2");
    command.add_option("--values", options->values, "Values along the line")
        ->check(Within(1, 100'000))
        ->capture_default_str()
        ->needs(line);
    return [options] { return std::make_unique<Flow>(*options); };
}

}  // namespace

Verb AddFlow(CLI::App& commandLine) {
    const FrameVerb overFrames = {
        "flow", "How everything in a video moves: dense optical flow, and the motion across a line",
        [](CLI::App& command) { return AddOwnOptions(command, std::make_shared<Options>()); }};
    const auto video = std::make_shared<VideoOptions>();
    const auto options = std::make_shared<Options>();
    CLI::App* const command = AddCommand(commandLine, overFrames, kFooter);
    AddVideoOptions(*command, *video, "its motion in colour");
    AddOwnOptions(*command, options);
    command->add_option("--scale", options->scale, "Pixels per frame that are shown at full brightness")
        ->check(Within(0.01, 1000))
        ->capture_default_str();
    command->add_option("--plot", options->plot, "Draw the motion across the line over time here")
        ->check(EndsIn({".svg"}))
        ->needs(command->get_option("--line"));
    return {command, [video, options] { return Run(*video, *options); }, overFrames};
}

}  // namespace quarry::command
