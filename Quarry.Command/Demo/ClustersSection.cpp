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
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

struct Run {
    explicit Run(const Clip& clip) : shots(MovingFrames(clip)) {}

    Plot count;
    Shots shots;
    std::vector<double> milliseconds;
    double clusters = 0;  ///< of all frames
    double area = 0;      ///< 0..1 of a frame, of all clusters
};

Run Play(const Clip& clip) {
    Run run(clip);
    run.count.title = "Number of clusters over time";
    run.count.xLabel = "time, s";
    run.count.yLabel = "clusters";
    ContourClusters find(kUsualClusters);
    Progress progress("clusters", "frames", MovingFrames(clip));
    const auto next = PlayMoving(clip);
    for (MovingFrame frame; next(frame);) {
        const cv::Mat redFirst = RedFirst(OnBlack(frame.pixels, frame.foreground));
        const Stopwatch watch;
        const ContourClusters::Clusters clusters = find(ViewOf(redFirst));
        run.milliseconds.push_back(watch.Milliseconds());
        run.clusters += static_cast<double>(clusters.size());
        for (const Cluster& cluster : clusters) run.area += static_cast<double>(cluster.Contour->Area);
        run.count.x.push_back(frame.seconds);
        run.count.y.push_back(static_cast<double>(clusters.size()));
        if (run.shots.Wants(frame.index)) {
            run.shots.Add(frame.seconds, MarkClusters(frame.pixels, clusters),
                          std::to_string(clusters.size()) + " clusters");
        }
        progress.Advance();
    }
    run.count.marks = run.shots.marks();
    return run;
}

}  // namespace

Section ClustersSection(const Footage& footage) {
    const Run run = Play(footage.clip);
    const auto frames = static_cast<double>(run.milliseconds.size());
    const double meanArea = run.clusters > 0 ? run.area / run.clusters : 0;

    Section section;
    section.id = "contour-clusters";
    section.title = "Clusters";
    section.summary = "The things in a frame that is black between them: contour, centre and size of each.";
    section.input = MovingInput(footage.clip);
    section.result = run.shots.TableHtml("A frame with its clusters");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "without the background model";
    section.body = R"(<div class="facts">)" +
                   html::Fact(html::Time(section.milliseconds), "per frame, median, without the background model") +
                   html::Fact(Number(run.clusters / frames, 1), "clusters per frame on average") +
                   html::Fact(Number(meanArea * 100, 2) + "&nbsp;%", "of the frame: the mean area of a cluster") +
                   "</div>\n<h3>How many there are</h3>\n" + Svg(run.count) +
                   "<p class=\"quiet\">Things smaller than 0.1 % of the frame are left out. Letters mark the instants "
                   "shown below; crosses are centres of mass.</p>\n" +
                   run.shots.Html("Clusters");
    return section;
}

}  // namespace quarry::command
