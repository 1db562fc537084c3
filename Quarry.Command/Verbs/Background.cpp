#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Options.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"
#include "VideoVerb.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(The model first learns (state Accumulating) and is sure of its background after ADAPTATION /
SPEEDUP seconds (state Ready). `foreground` is the share of the frame's pixels that differ
from it.

Example:
  quarry background street.avi --out street-marked.avi --sensitivity 0.7)";

const char* NameOf(UpdaterState state) {
    switch (state) {
        case NoResult:
            return "NoResult";
        case Accumulating:
            return "Accumulating";
        case Ready:
            return "Ready";
    }
    return "unknown";
}

class Background : public FrameAnalyser {
public:
    explicit Background(const BackgroundModel::Options& options) : model(options) {}

    void Analyse(const VideoFrame& frame) override {
        last = frame;
        const ImageView pixels = ViewOf(frame.pixels, frame.timestamp);
        const Stopwatch watch;
        state = model.Update(pixels);
        milliseconds.push_back(watch.Milliseconds());
        foreground = MatOf(model.Result().foreground());
        share = ShareOf(foreground);
        shares += share;
    }

    std::string TableHead() const override { return "  state         foreground %        ms"; }

    std::string TableRow() const override {
        return fmt::format("  {:<12}  {:12.3f}  {:8.2f}", NameOf(state), share * 100, milliseconds.back());
    }

    nlohmann::ordered_json Fields() const override {
        return {{"state", NameOf(state)}, {"foreground", share}, {"milliseconds", milliseconds.back()}};
    }

    cv::Mat Annotated() const override {
        return WithCaption(MarkForeground(last.pixels, foreground),
                           CaptionStart(last) + fmt::format("{}   foreground {:.2f} %", NameOf(state), share * 100));
    }

    std::string Summary() const override {
        return fmt::format("foreground {:.3f} % on average, {:.2f} ms per frame (median)",
                           100 * shares / static_cast<double>(milliseconds.size()), Quantile(milliseconds, 0.5));
    }

private:
    BackgroundModel model;
    VideoFrame last{};
    UpdaterState state = NoResult;
    cv::Mat foreground;  ///< a view of the model's memory
    double share = 0;    ///< of the frame's pixels that are foreground, from 0 to 1
    std::vector<double> milliseconds;
    double shares = 0;
};

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto model = std::make_shared<BackgroundModel::Options>();
    command.add_option("--sensitivity", model->sensitivity, "How small a difference from the background counts")
        ->check(Within(0, 1))
        ->capture_default_str();
    command.add_option("--history", model->historyLength, "Frames of history of the model")
        ->check(Within(1, 100'000))
        ->capture_default_str();
    command
        .add_option("--adaptation", model->adaptationSeconds, "Seconds in which a learnt background follows changes")
        ->check(Within(0.001, 86'400))
        ->capture_default_str();
    command
        .add_option("--speedup", model->learningSpeedup, "How many times faster it is learnt at first; 0 is no faster")
        ->check(Within(0, 1000))
        ->capture_default_str();
    return [model] { return std::make_unique<Background>(*model); };
}

}  // namespace

Verb AddBackground(CLI::App& commandLine) {
    return AddVideoVerb(
        commandLine,
        {"background", "What moves in a video: learns its background and marks what differs from it", AddOwnOptions},
        kFooter, "its foreground marked");
}

}  // namespace quarry::command
