#include <Quarry/HostOpenCV.hpp>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Html.h"
#include "Demo/Moving.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Demo/Shots.h"
#include "Figures.h"
#include "OutlinePicture.h"
#include "Places.h"
#include "Progress.h"
#include "Timing.h"
#include "Tracking.h"

namespace quarry::command {
namespace {

using html::Number;

struct Run {
    explicit Run(const Clip& clip) : shots(MovingFrames(clip)) {}

    Plot rate;
    Shots shots;
    std::vector<double> milliseconds;  ///< of one pair
};

/// Puts the rates of a contour against the one before it into a run.
class Rates {
public:
    Rates(Run& run_, const Clip& clip)
        : run(run_), timing{clip.size.width, clip.size.height, MovingInterval(clip) * 1000, 0} {}

    void Add(double seconds, const Polygon& contour) {
        if (!before.empty() && !contour.empty()) {
            const Stopwatch watch;
            const double rate = rateOf(contour, before, timing);
            run.milliseconds.push_back(watch.Milliseconds());
            run.rate.x.push_back(seconds);
            // Shapes that cannot be compared leave the curve where it is.
            run.rate.y.push_back(IsOfComparableShapes(rate) ? rate : run.rate.y.empty() ? 0 : run.rate.y.back());
        }
        before = contour;
    }

private:
    Run& run;
    ContourRate rateOf;
    ContourTiming timing;
    Polygon before;
};

/// The target is tracked through all frames, but only some have a mask.
Run Play(const Clip& clip) {
    Run run(clip);
    run.rate.title = "Shape change per second, over time";
    run.rate.xLabel = "time, s";
    run.rate.yLabel = "change per second";
    const std::vector<cv::Mat>& foregrounds = clip.Foregrounds();
    Tracker tracker(clip.target.place);
    ObjectContour find;
    Rates rates(run, clip);
    Progress progress("shape change", "frames", clip.frames);
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        progress.Advance();
        if (i < clip.target.frame) continue;
        const cv::Rect place = tracker.Take(frame).target & cv::Rect({0, 0}, frame.size());
        if (i % kMovingEvery != 0) continue;
        const cv::Mat& foreground = foregrounds[static_cast<std::size_t>(i / kMovingEvery)];
        Polygon contour;
        if (!place.empty()) {
            const OutlineResult outline = find(MaskViewOf(foreground), RelativeOf(place, frame.size()));
            contour.assign(outline.begin(), outline.end());
        }
        const double seconds = i / clip.framesPerSecond;
        rates.Add(seconds, contour);
        if (run.shots.Wants(i / kMovingEvery)) {
            cv::Mat picture = MarkTarget(frame, place, !contour.empty());
            DrawPolygon(picture, contour, kMarkColour);
            run.shots.Add(seconds, picture, std::to_string(contour.size()) + " points");
        }
    }
    run.rate.marks = run.shots.marks();
    return run;
}

}  // namespace

Section ShapeRateSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);

    Section section;
    section.id = "shape-change-rate";
    section.title = "Shape change rate";
    section.summary = "How fast a contour changes its shape, whatever its place, size and rotation.";
    section.input = MovingInput(clip) + ": " + html::Escape(clip.target.what);
    section.result = SparklineSvg(run.rate);
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "per pair of contours";
    section.body =
        R"(<div class="facts">)" + html::Fact(html::Time(section.milliseconds), "per pair of contours, median") +
        html::Fact(Number(Quantile(run.rate.y, 0.5), 2), "per second, median of the change") +
        html::Fact(std::to_string(run.milliseconds.size()),
                   "pairs of contours, " + Number(MovingInterval(clip), 2) + "&nbsp;s apart") +
        "</div>\n<h3>How fast the shape changes</h3>\n" + Svg(run.rate) +
        "<p class=\"quiet\">The contour is that of what moves within the tracked rectangle, against the one before it. "
        "Somebody who walks changes shape with every step; peaks are contours that fell apart or grew together. "
        "Letters mark the instants shown below.</p>\n" +
        run.shots.Html("The contour");
    return section;
}

}  // namespace quarry::command
