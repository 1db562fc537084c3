#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Figures.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr double kApart = 1;      // seconds
constexpr double kAmplified = 4;  // for view
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

struct Run {
    double apart = 0;  ///< seconds between the two frames
    std::vector<double> milliseconds;
    Plot mean;
    cv::Mat before, after, difference;  ///< the pair that differs most
    DifferenceStatistics statistics{};  ///< of that pair
    double seconds = 0;                 ///< its time
};

Run Play(const Clip& clip) {
    Run run;
    // The two frames are the same one in a clip that is too short for more.
    const int apart = std::clamp(static_cast<int>(kApart * clip.framesPerSecond), 0, clip.frames - 1);
    run.apart = apart / clip.framesPerSecond;
    run.mean.title = "Mean absolute difference over time";
    run.mean.xLabel = "time, s";
    run.mean.yLabel = "mean difference, grey levels";
    ImageSubtractor subtract;
    Progress progress("difference", "frames", clip.frames);
    const auto next = clip.Play();
    std::deque<cv::Mat> last;
    double most = -1;
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        progress.Advance();
        last.push_back(frame.clone());
        if (i < apart) continue;
        const Stopwatch watch;
        const cv::Mat difference = CloneOf(subtract(ViewOf(last.front()), ViewOf(frame)));
        run.milliseconds.push_back(watch.Milliseconds());
        const DifferenceStatistics statistics = StatisticsOf(difference);
        run.mean.x.push_back(i / clip.framesPerSecond);
        run.mean.y.push_back(statistics.mean);
        if (statistics.mean > most) {
            most = statistics.mean;
            run.before = last.front();
            run.after = last.back();
            run.difference = difference;
            run.statistics = statistics;
            run.seconds = run.mean.x.back();
        }
        last.pop_front();
    }
    run.mean.marks = {{run.seconds, "A"}};
    return run;
}

}  // namespace

Section DifferenceSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);
    const cv::Mat amplified = run.difference * kAmplified;
    const std::string times = Number(kAmplified, 0) + "&nbsp;&times; amplified for view";

    Section section;
    section.id = "frame-difference";
    section.title = "Absolute difference";
    section.summary = "What differs between two frames of the same size, byte by byte.";
    section.input = html::Escape(clip.name) + ", " + std::to_string(run.milliseconds.size()) + " pairs of frames " +
                    Number(run.apart, 1) + "&nbsp;s apart";
    section.result = html::Jpeg(amplified, kTableWidth, "An amplified difference");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "per pair";
    section.body = R"(<div class="facts">)" +
                   html::Fact(Number(run.statistics.mean, 2), "grey levels, mean of the pair below") +
                   html::Fact(Number(run.statistics.changed * 100, 1) + "&nbsp;%", "of its pixels differ at all") +
                   html::Fact(std::to_string(run.statistics.maximum), "grey levels, its largest difference") +
                   "</div>\n<h3><span class=\"badge\">A</span>The pair that differs most, at " +
                   Number(run.seconds, 1) + "&nbsp;s</h3>\n<div class=\"three\">" +
                   html::Figure(html::Jpeg(run.before, kShownWidth, "The earlier frame"),
                                Number(run.apart, 1) + "&nbsp;s before") +
                   html::Figure(html::Jpeg(run.after, kShownWidth, "The later frame"), "the frame") +
                   html::Figure(html::Jpeg(amplified, kShownWidth, "Their difference"), "their difference, " + times) +
                   "</div>\n<h3>Over the time of the clip</h3>\n" + Svg(run.mean) +
                   "<p class=\"quiet\">Each frame against the one " + Number(run.apart, 1) +
                   "&nbsp;s before it. What does not move adds the noise of the camera alone.</p>\n";
    return section;
}

}  // namespace quarry::command
