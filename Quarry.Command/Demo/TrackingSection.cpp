#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Progress.h"
#include "Timing.h"
#include "Tracking.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr int kInstants = 6;
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

struct Instant {
    double seconds;
    bool found;
    cv::Mat picture;
};

struct Run {
    Plot place;
    std::vector<double> milliseconds;
    int found = 0;
    std::vector<Instant> instants;
};

/// Whether one of the instants that are shown, from the first frame to the last, is this frame.
bool IsShown(int index, int count) {
    for (int k = 0; k < kInstants; ++k) {
        if (index == k * (count - 1) / (kInstants - 1)) return true;
    }
    return false;
}

/// Stretches in which the target was lost.
class LostStretches {
public:
    void Add(bool found, double from, double to) {
        if (!found && wasFound) bands.push_back({from, to, "lost"});
        if (!found) bands.back().to = to;
        wasFound = found;
    }

    std::vector<PlotBand> bands;

private:
    bool wasFound = true;
};

Run Play(const Clip& clip) {
    Run run;
    run.place.title = "The middle of the rectangle over time";
    run.place.xLabel = "time, s";
    run.place.yLabel = "middle of the rectangle, pixels";
    run.place.name = "x";
    run.place.secondName = "y";
    run.place.fromZero = false;
    const int count = clip.frames - clip.target.frame;
    Tracker tracker(clip.target.place);
    Progress progress("tracking", "frames", count);
    LostStretches lost;
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        if (i < clip.target.frame) continue;
        const TrackView view = tracker.Take(frame);
        const double seconds = i / clip.framesPerSecond;
        run.milliseconds.push_back(view.milliseconds);
        run.found += view.found ? 1 : 0;
        run.place.x.push_back(seconds);
        run.place.y.push_back(view.target.x + view.target.width / 2.0);
        run.place.second.push_back(view.target.y + view.target.height / 2.0);
        lost.Add(view.found, seconds, seconds + 1 / clip.framesPerSecond);
        if (IsShown(i - clip.target.frame, count)) {
            const std::string letter(1, static_cast<char>('A' + run.instants.size()));
            run.place.marks.push_back({seconds, letter});
            run.instants.push_back({seconds, view.found, MarkTarget(frame, view.target, view.found)});
        }
        progress.Advance();
    }
    run.place.bands = lost.bands;
    return run;
}

std::string Instants(const Run& run) {
    std::string figures;
    for (std::size_t i = 0; i < run.instants.size(); ++i) {
        const Instant& instant = run.instants[i];
        const std::string time = Number(instant.seconds, 1) + " s";
        figures +=
            html::Figure(html::Jpeg(instant.picture, kShownWidth, "The target at " + time),
                         run.place.marks[i].label + " &middot; " + time + (instant.found ? "" : " &middot; lost"));
    }
    return R"(<div class="three">)" + figures + "</div>\n";
}

}  // namespace

Section TrackingSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);
    const double share = run.found / static_cast<double>(run.milliseconds.size());
    const Instant& shown = run.instants[run.instants.size() / 2];

    Section section;
    section.id = "mosse-tracker";
    section.title = "Correlation tracker";
    section.summary = "Follows one rectangle through a video, and says when it has lost it.";
    section.input = html::Escape(clip.name) + ", " + html::Escape(clip.target.what) + ", " +
                    std::to_string(run.milliseconds.size()) + " frames";
    section.result = html::Jpeg(shown.picture, kTableWidth, "A tracked target");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.body =
        R"(<div class="facts">)" +
        html::Fact(html::Time(section.milliseconds),
                   "per frame, median; 95&nbsp;% take under " + html::Time(Quantile(run.milliseconds, 0.95))) +
        html::Fact(Number(share * 100, 0) + "&nbsp;%", "of the frames show the target, the tracker says") +
        html::Fact(std::to_string(clip.target.place.width) + " &times; " + std::to_string(clip.target.place.height),
                   "pixels: " + html::Escape(clip.target.what)) +
        "</div>\n<h3>Where the target is</h3>\n" + Svg(run.place) +
        R"(<p class="quiet">Letters mark the instants shown below. The rectangle is drawn green where the
target was found, red where it was lost. y grows downwards, as rows do.</p>
)" + Instants(run);
    return section;
}

}  // namespace quarry::command
