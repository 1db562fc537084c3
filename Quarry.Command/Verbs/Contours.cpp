#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Annotation.h"
#include "JsonOutput.h"
#include "Options.h"
#include "OutlinePicture.h"
#include "PixelRegions.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"
#include "VideoVerb.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(A background model is learnt from the video, as by the verb background. What differs from it
is searched for the contour of one object, within the rectangle of --rect when one is given
(X,Y is its upper left corner, in pixels). Per frame:
  points     of the contour; 0 when there is no object. With --json each is [x, y], in
             fractions of the frame's width and height, and can be saved for the verbs inside
             and shape-rate.
  area       share of the frame's area that the contour encloses
  perimeter  its length in widths of the frame (in % of it in the table)

--method says which points of the border are kept: all of them (none), the ends of straight
runs (simple), or those that shape it most (tc89-l1, tc89-kcos). Of several contours --select
takes the one with the largest area, or with the longest diagonal of the box around it.

Examples:
  quarry contours street.avi --rect 500,200,200,300 --out street-contour.avi
  quarry contours street.avi --json | sed -n 40p | jq .points > now.json)";

struct Options {
    std::optional<cv::Rect> rect;
    ObjectContour::Options contour;
};

/// @throws CLI::ValidationError  the rectangle reaches beyond the frame
void CheckIsWithin(const cv::Rect& rect, const cv::Size& frame) {
    if ((rect & cv::Rect({0, 0}, frame)) == rect) return;
    throw CLI::ValidationError("--rect", fmt::format("{},{},{},{} is not within the frame of {} x {} pixels", rect.x,
                                                     rect.y, rect.width, rect.height, frame.width, frame.height));
}

class Contours : public FrameAnalyser {
public:
    explicit Contours(const Options& options) : rect(options.rect), find(options.contour) {}

    void Analyse(const VideoFrame& frame) override {
        if (milliseconds.empty() && rect) CheckIsWithin(*rect, frame.pixels.size());
        last = frame;
        model.Update(ViewOf(frame.pixels, frame.timestamp));
        const cv::Size size = frame.pixels.size();
        const RelRect area = RelativeOf(rect.value_or(cv::Rect({0, 0}, size)), size);
        const Stopwatch watch;
        outline = find(model.Result().foreground(), area);
        milliseconds.push_back(watch.Milliseconds());
        found += outline->empty() ? 0 : 1;
    }

    std::string TableHead() const override { return "  points    area %  perimeter %        ms"; }

    std::string TableRow() const override {
        return fmt::format("  {:6}  {:8.3f}  {:11.2f}  {:8.2f}", outline->size(),
                           static_cast<double>(outline->area()) * 100, static_cast<double>(outline->perimeter()) * 100,
                           milliseconds.back());
    }

    nlohmann::ordered_json Fields() const override {
        return {{"points", JsonOf(*outline)},
                {"area", outline->area()},
                {"perimeter", outline->perimeter()},
                {"milliseconds", milliseconds.back()}};
    }

    cv::Mat Annotated() const override {
        cv::Mat picture = rect ? MarkTarget(last.pixels, *rect, !outline->empty()) : last.pixels.clone();
        DrawPolygon(picture, *outline, kMarkColour);
        return WithCaption(picture, CaptionStart(last) + fmt::format("{} points   area {:.2f} %", outline->size(),
                                                                     static_cast<double>(outline->area()) * 100));
    }

    std::string Summary() const override {
        return fmt::format("an object in {}, {:.2f} ms per frame (median)", found, Quantile(milliseconds, 0.5));
    }

private:
    std::optional<cv::Rect> rect;
    BackgroundModel model;
    ObjectContour find;
    VideoFrame last{};
    std::optional<OutlineResult> outline;
    std::vector<double> milliseconds;  ///< without the background model
    int found = 0;
};

cv::Rect RectOf(const std::string& text) {
    const auto [x, y, width, height] = FourWholeNumbers("--rect", text, "X,Y,WIDTH,HEIGHT");
    if (x < 0 || y < 0 || width < 1 || height < 1) {
        throw CLI::ValidationError("--rect", "X and Y must be 0 or more and WIDTH and HEIGHT 1 or more, not " + text);
    }
    return {x, y, width, height};
}

/// Adds an option whose value is one of the names. It sets the choice that the name stands for.
template <typename Choice>
void AddChoice(CLI::App& command, const std::string& option, Choice& choice, const std::map<std::string, Choice>& names,
               const std::string& preset, const std::string& description) {
    command
        .add_option_function<std::string>(
            option, [&choice, names](const std::string& name) { choice = names.at(name); }, description)
        ->check(CLI::IsMember(names))
        ->default_str(preset);
}

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto options = std::make_shared<Options>();
    command
        .add_option_function<std::string>(
            "--rect", [options](const std::string& text) { options->rect = RectOf(text); },
            "Where to look, in pixels (default: the whole frame)")
        ->type_name("X,Y,WIDTH,HEIGHT");
    const std::map<std::string, Tracing> methods = {{"none", Tracing::EveryPixel},
                                                    {"simple", Tracing::RunEnds},
                                                    {"tc89-l1", Tracing::TehChinL1},
                                                    {"tc89-kcos", Tracing::TehChinKCosine}};
    const std::map<std::string, Selection> selections = {{"area", Selection::LargestArea},
                                                         {"diagonal", Selection::LongestDiagonal}};
    AddChoice(command, "--method", options->contour.tracing, methods, "simple",
              "Which points of the border are left out");
    AddChoice(command, "--select", options->contour.selection, selections, "area",
              "Which contour is taken: that of the largest area or diagonal");
    return [options] { return std::make_unique<Contours>(*options); };
}

}  // namespace

Verb AddContours(CLI::App& commandLine) {
    return AddVideoVerb(
        commandLine,
        {"contours", "The contour of what moves in a video: one object, in the whole frame or in a rectangle",
         AddOwnOptions},
        kFooter, "the contour drawn");
}

}  // namespace quarry::command
