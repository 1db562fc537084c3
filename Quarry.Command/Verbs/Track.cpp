#include <fmt/format.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Options.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Tracking.h"
#include "Verbs.h"
#include "VideoVerb.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(The rectangle marks the target in the first frame: X,Y is its upper left corner, in pixels;
WIDTH and HEIGHT are at least 2 and at most those of the frame. The tracker may widen it by
a few pixels, to a size that it can work with fast. A corner left of or above the frame is
written --rect=-5,40,60,80.

Per frame it gives the rectangle and whether the target was found (drawn green) or not (red:
the rectangle stays where it was, and the search goes on there). Mode 0 is careful; mode 1
adapts faster and is content with a weaker match.

Example:
  quarry track street.avi --rect 310,140,40,90 --out street-tracked.avi)";

constexpr int kSmallestSide = 2;  // pixels

struct Options {
    cv::Rect target;
    uint32_t mode = 0;
};

void CheckLiesWithin(const cv::Rect& target, const cv::Size& frame) {
    const bool fits = target.width <= frame.width && target.height <= frame.height;
    if (fits && !(target & cv::Rect({0, 0}, frame)).empty()) return;
    throw CLI::ValidationError(
        "--rect", fmt::format("{},{},{},{} is {} the frame of {} x {} pixels", target.x, target.y, target.width,
                              target.height, fits ? "outside" : "larger than", frame.width, frame.height));
}

class Tracking : public FrameAnalyser {
public:
    explicit Tracking(const Options& options)
        : target(options.target), tracker(options.target, static_cast<TrackerMode>(options.mode)) {}

    void Analyse(const VideoFrame& frame) override {
        if (milliseconds.empty()) CheckLiesWithin(target, frame.pixels.size());
        last = frame;
        tracked = tracker.Update(frame.pixels);
        milliseconds.push_back(tracked.milliseconds);
        found += tracked.found ? 1 : 0;
    }

    std::string TableHead() const override { return "       x       y   width  height  found        ms"; }

    std::string TableRow() const override {
        return fmt::format("  {:6}  {:6}  {:6}  {:6}  {:<5}  {:8.2f}", tracked.target.x, tracked.target.y,
                           tracked.target.width, tracked.target.height, tracked.found ? "yes" : "no",
                           tracked.milliseconds);
    }

    nlohmann::ordered_json Fields() const override {
        return {{"x", tracked.target.x},           {"y", tracked.target.y},  {"width", tracked.target.width},
                {"height", tracked.target.height}, {"found", tracked.found}, {"milliseconds", tracked.milliseconds}};
    }

    cv::Mat Annotated() const override {
        return WithCaption(MarkTarget(last.pixels, tracked.target, tracked.found),
                           CaptionStart(last) + fmt::format("{}   {}, {}", tracked.found ? "found" : "lost",
                                                            tracked.target.x, tracked.target.y));
    }

    std::string Summary() const override {
        return fmt::format("target found in {}, {:.2f} ms per frame (median)", found, Quantile(milliseconds, 0.5));
    }

private:
    cv::Rect target;
    Tracker tracker;
    VideoFrame last{};
    TrackedTarget tracked{};
    std::vector<double> milliseconds;
    int found = 0;
};

cv::Rect TargetOf(const std::string& text) {
    const auto [x, y, width, height] = FourWholeNumbers("--rect", text, "X,Y,WIDTH,HEIGHT");
    if (width < kSmallestSide || height < kSmallestSide) {
        throw CLI::ValidationError("--rect", "width and height must be 2 or more, not " + text);
    }
    return {x, y, width, height};
}

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto options = std::make_shared<Options>();
    command
        .add_option_function<std::string>(
            "--rect", [options](const std::string& text) { options->target = TargetOf(text); },
            "The target in the first frame, in pixels")
        ->type_name("X,Y,WIDTH,HEIGHT")
        ->required();
    command.add_option("--mode", options->mode, "0: careful; 1: adapts faster, content with a weaker match")
        ->check(CLI::IsMember({"0", "1"}))
        ->capture_default_str();
    return [options] { return std::make_unique<Tracking>(*options); };
}

}  // namespace

Verb AddTrack(CLI::App& commandLine) {
    return AddVideoVerb(
        commandLine,
        {"track", "Follows one target through a video, from a rectangle in the first frame that is read",
         AddOwnOptions},
        kFooter, "the rectangle drawn");
}

}  // namespace quarry::command
