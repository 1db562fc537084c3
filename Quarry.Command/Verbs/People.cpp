#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Annotation.h"
#include "JsonOutput.h"
#include "Options.h"
#include "PixelRegions.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"
#include "VideoVerb.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(Finds people who stand or walk and are seen as a whole. Each frame is searched for itself: who
is found in one may be missed in the next. The rectangles have a margin around the person, and
none is less than 128 pixels high; where the people are smaller, enlarge the video. An --area
of at most 64 pixels in width or at most 128 in height is not searched.

--sensitivity has four steps, which end at 0.25, 0.5, 0.75 and 1; each is some 2 to 5 times
slower than the one before. Per frame the table gives the number of people; with --json there
are their rectangles in pixels and weights too: 0 is barely a person, above 1 a plain one.

Example:
  quarry people street.avi --sensitivity 0.6 --area 0,0.4,1,0.6 --out street-people.avi)";

struct Options {
    PeopleDetector::Options detector{0.4F};
    std::vector<RelRect> areas;
};

class People : public FrameAnalyser {
public:
    explicit People(const Options& options) : areas(options.areas), detector(options.detector) {}

    void Analyse(const VideoFrame& frame) override {
        last = frame;
        const ImageView pixels = ViewOf(frame.pixels);
        const Stopwatch watch;
        people = areas.empty() ? detector(pixels) : detector(pixels, areas);
        milliseconds.push_back(watch.Milliseconds());
        rectangles = RectanglesOf(*people, {{0, 0}, frame.pixels.size()});
        counts.push_back(static_cast<double>(rectangles.size()));
    }

    std::string TableHead() const override { return "  people        ms"; }

    std::string TableRow() const override {
        return fmt::format("  {:6}  {:8.1f}", rectangles.size(), milliseconds.back());
    }

    nlohmann::ordered_json Fields() const override {
        nlohmann::ordered_json objects = nlohmann::ordered_json::array();
        for (std::size_t i = 0; i < rectangles.size(); ++i) {
            objects.push_back(JsonOf(rectangles[i]));
            objects.back()["weight"] = (*people)[i].Weight;
        }
        std::sort(objects.begin(), objects.end());  // OpenCV's threads find them in no fixed order
        return {{"people", objects}, {"milliseconds", milliseconds.back()}};
    }

    cv::Mat Annotated() const override {
        return WithCaption(MarkFound(last.pixels, rectangles),
                           CaptionStart(last) + fmt::format("people: {}", rectangles.size()));
    }

    std::string Summary() const override {
        return fmt::format("{:.0f} people at most, {:.0f} in the median; {:.1f} ms per frame (median)",
                           Quantile(counts, 1), Quantile(counts, 0.5), Quantile(milliseconds, 0.5));
    }

private:
    std::vector<RelRect> areas;
    PeopleDetector detector;
    VideoFrame last{};
    std::optional<Detections> people;
    std::vector<cv::Rect> rectangles;  ///< around the people, in pixels
    std::vector<double> milliseconds;
    std::vector<double> counts;  ///< of people, per frame
};

std::unique_ptr<FrameAnalyser> MakeAnalyser(const Options& options) {
    if (options.detector.maxHeight < options.detector.minHeight) {
        throw CLI::ValidationError("--max-size", fmt::format("must be at least --min-size, {:g}, not {:g}",
                                                             options.detector.minHeight, options.detector.maxHeight));
    }
    return std::make_unique<People>(options);
}

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto options = std::make_shared<Options>();
    PeopleDetector::Options& detector = options->detector;
    command.add_option("--sensitivity", detector.sensitivity, "How finely, and thus how slowly, it searches")
        ->check(Within(0, 1))
        ->capture_default_str();
    command.add_option("--min-size", detector.minHeight, "Height of the smallest person, as a share of the frame's")
        ->check(Within(0, 1))
        ->capture_default_str();
    command.add_option("--max-size", detector.maxHeight, "Height of the tallest person, as a share of the frame's")
        ->check(Within(0, 1))
        ->capture_default_str();
    command
        .add_option_function<std::vector<std::string>>(
            "--area",
            [options](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) options->areas.push_back(AreaOf("--area", text));
            },
            "Search this part of the frame, in fractions of its width and height (default: all of it); may be repeated")
        ->expected(1)
        ->take_all()
        ->type_name("X,Y,WIDTH,HEIGHT");
    return [options] { return MakeAnalyser(*options); };
}

}  // namespace

Verb AddPeople(CLI::App& commandLine) {
    return AddVideoVerb(commandLine, {"people", "Finds standing and walking people in a video", AddOwnOptions}, kFooter,
                        "rectangles around the people");
}

}  // namespace quarry::command
