#include "Operations/People.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Timing.h"
#include "Verbs/Options.h"
#include "Verbs/OverVideo.h"
#include "Verbs/Verbs.h"

namespace quarry::host {
namespace {

constexpr const char* kFooter =
    R"(Finds people who stand or walk and are seen as a whole. Each frame is searched for itself: who
is found in one may be missed in the next. The rectangles have a margin around the person, and
none is lower than 128 pixels; where the people are smaller, enlarge the video. Of an --area
64 pixels wide or narrower, or 128 pixels high or lower, nothing is searched.

--sensitivity has four steps, which end at 0.25, 0.5, 0.75 and 1; each is some 2 to 5 times
slower than the one before. Per frame the table gives the number of people; with --json there
are their rectangles in pixels and weights too: 0 is barely a person, above 1 a plain one.

Example:
  quarry people street.avi --sensitivity 0.6 --area 0,0.4,1,0.6 --out street-people.avi)";

struct Options {
    VideoOptions video;
    PeopleSettings finder;
    std::vector<cv::Rect2f> areas;
};

class People : public FrameByFrame {
public:
    explicit People(const Options& options) : areas(options.areas), finder(options.finder) {}

    void Take(const VideoFrame& frame) override {
        last = frame;
        view = finder.Find(frame.pixels, areas);
        milliseconds.push_back(view.milliseconds);
        counts.push_back(static_cast<double>(view.people.size()));
    }

    std::string TableHead() const override { return "  people        ms"; }

    std::string TableRow() const override { return Format("  %6zu  %8.1f", view.people.size(), view.milliseconds); }

    nlohmann::ordered_json Fields() const override {
        nlohmann::ordered_json people = nlohmann::ordered_json::array();
        for (const Person& person : view.people) {
            people.push_back(JsonOf(person.place));
            people.back()["weight"] = person.weight;
        }
        return {{"people", people}, {"milliseconds", view.milliseconds}};
    }

    cv::Mat Annotated() const override {
        return WithCaption(MarkFound(last.pixels, PlacesOf(view.people)),
                           Format("frame %d   %.2f s   people: %zu", last.index, last.seconds, view.people.size()));
    }

    std::string Summary() const override {
        return Format("%.0f people at most, %.0f in the median; %.1f ms per frame (median)", Quantile(counts, 1),
                      Quantile(counts, 0.5), Quantile(milliseconds, 0.5));
    }

private:
    std::vector<cv::Rect2f> areas;
    PeopleFinder finder;
    VideoFrame last{};
    PeopleView view{};
    std::vector<double> milliseconds;
    std::vector<double> counts;  ///< of people, per frame
};

int Run(const Options& options) {
    if (options.finder.maxHeight < options.finder.minHeight) {
        throw CLI::ValidationError("--max-size", Format("must be at least --min-size, %g, not %g",
                                                        options.finder.minHeight, options.finder.maxHeight));
    }
    People verb(options);
    return RunOverVideo(options.video, "people", verb);
}

}  // namespace

Verb AddPeople(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand("people", "Finds standing and walking people in a video");
    command->footer(kFooter);
    AddVideoOptions(*command, options->video, "rectangles around the people");
    PeopleSettings& finder = options->finder;
    command->add_option("--sensitivity", finder.sensitivity, "How finely, and how slowly, is searched")
        ->check(Within(0, 1))
        ->capture_default_str();
    command->add_option("--min-size", finder.minHeight, "Lowest person, as a share of the frame's height")
        ->check(Within(0, 1))
        ->capture_default_str();
    command->add_option("--max-size", finder.maxHeight, "Highest person, as a share of the frame's height")
        ->check(Within(0, 1))
        ->capture_default_str();
    command
        ->add_option_function<std::vector<std::string>>(
            "--area",
            [options](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) options->areas.push_back(AreaOf("--area", text));
            },
            "Search this part of the frame, in fractions of its width and height (default: all of it); may be repeated")
        ->expected(1)
        ->take_all()
        ->type_name("X,Y,WIDTH,HEIGHT");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::host
