#include <Quarry/HostOpenCV.hpp>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Moving.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Demo/Shots.h"
#include "Foreground.h"
#include "OutlinePicture.h"
#include "Places.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

const Polygon kZone = {{0.3F, 0.3F}, {0.7F, 0.25F}, {0.85F, 0.6F}, {0.7F, 0.9F}, {0.25F, 0.85F}};
const cv::Scalar kZoneColour(255, 255, 255);
const cv::Scalar kCrossingColour(240, 150, 30);  // B, G, R: blue, as the curve is
const cv::Scalar kOutsideColour(190, 190, 190);

struct Run {
    explicit Run(const Clip& clip) : shots(MovingFrames(clip)) {}

    Plot counts;
    Shots shots;
    std::vector<double> milliseconds;  ///< of one contour
    int occupied = 0;                  ///< frames with something in the zone
};

const cv::Scalar& ColourOf(ContourPosition position) {
    if (position == ContourPosition::Crossing) return kCrossingColour;
    return position == ContourPosition::Inside ? kMarkColour : kOutsideColour;
}

/// What one frame shows.
struct Seen {
    cv::Mat picture;
    int inside = 0;
    int crossing = 0;
};

Seen Look(const MovingFrame& frame, ContourClusters& find, ContourIntersection& place, Run& run) {
    Seen seen{frame.pixels.clone()};
    DrawPolygon(seen.picture, kZone, kZoneColour);
    const cv::Mat redFirst = RedFirst(OnBlack(frame.pixels, frame.foreground));
    for (const Cluster& cluster : find(ViewOf(redFirst))) {
        const Span<FloatPoint> contour = quarry::PointsOf(*cluster.Contour);
        const Stopwatch watch;
        const ContourPosition position = place(kZone, contour);
        run.milliseconds.push_back(watch.Milliseconds());
        DrawPolygon(seen.picture, contour, ColourOf(position));
        seen.inside += position == ContourPosition::Inside ? 1 : 0;
        seen.crossing += position == ContourPosition::Crossing ? 1 : 0;
    }
    return seen;
}

Run Play(const Clip& clip) {
    Run run(clip);
    run.counts.title = "Contours inside the zone and across its border, over time";
    run.counts.xLabel = "time, s";
    run.counts.yLabel = "contours";
    run.counts.name = "inside";
    run.counts.secondName = "crossing";
    ContourClusters find(kUsualClusters);
    ContourIntersection place;
    Progress progress("inside a zone", "frames", MovingFrames(clip));
    const auto next = PlayMoving(clip);
    for (MovingFrame frame; next(frame);) {
        const Seen seen = Look(frame, find, place, run);
        run.occupied += seen.inside + seen.crossing > 0 ? 1 : 0;
        run.counts.x.push_back(frame.seconds);
        run.counts.y.push_back(seen.inside);
        run.counts.second.push_back(seen.crossing);
        if (run.shots.Wants(frame.index)) {
            run.shots.Add(frame.seconds, seen.picture,
                          std::to_string(seen.inside) + " inside, " + std::to_string(seen.crossing) + " crossing");
        }
        progress.Advance();
    }
    run.counts.marks = run.shots.marks();
    return run;
}

}  // namespace

Section InsideSection(const Footage& footage) {
    const Run run = Play(footage.clip);
    const double share = run.occupied / static_cast<double>(run.counts.x.size());

    Section section;
    section.id = "contour-position";
    section.title = "Contour against a polygon";
    section.summary = "Whether a contour is inside a polygon, outside of it or across its border.";
    section.input = MovingInput(footage.clip) + ", " + std::to_string(run.milliseconds.size()) + " contours";
    section.result = run.shots.TableHtml("A frame with a zone and contours");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "per contour";
    section.body =
        R"(<div class="facts">)" + html::Fact(html::Time(section.milliseconds), "per contour, median") +
        html::Fact(std::to_string(run.milliseconds.size()), "contours were placed") +
        html::Fact(Number(share * 100, 0) + "&nbsp;%", "of the frames have something in the zone") +
        "</div>\n<h3>Who is in the zone</h3>\n" + Svg(run.counts) +
        "<p class=\"quiet\">The zone is drawn white. Contours are orange inside of it, blue across its border and grey "
        "outside. Letters mark the instants shown below.</p>\n" +
        run.shots.Html("The zone");
    return section;
}

}  // namespace quarry::command
