#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Figures.h"
#include "Progress.h"
#include "Ticks.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr double kFirstShown = 1;  // second, while the background is being learnt
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

/// One instant of the clip, as it is shown.
struct Instant {
    double seconds;
    UpdaterState state;
    double share;
    cv::Mat frame;
    cv::Mat foreground;
    cv::Mat background;
};

struct Run {
    std::vector<double> seconds;
    std::vector<double> percent;  ///< foreground
    std::vector<double> milliseconds;
    double learntAt = -1;  ///< seconds, -1: never
    std::size_t learntIndex = 0;
    std::vector<Instant> instants;
};

bool IsShown(int frame, bool justLearnt, const Clip& clip) {
    const bool first = frame == std::min(static_cast<int>(kFirstShown * clip.framesPerSecond), clip.frames - 1);
    return first || justLearnt || frame == clip.frames * 3 / 5 || frame == clip.frames - 1;
}

Run Play(const Clip& clip) {
    Run run;
    BackgroundModel model;
    Progress progress("background", "frames", clip.frames);
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        const double seconds = i / clip.framesPerSecond;
        const ImageView pixels = ViewOf(frame, TimestampOf(i, clip.framesPerSecond));
        const Stopwatch watch;
        const UpdaterState state = model.Update(pixels);
        run.milliseconds.push_back(watch.Milliseconds());
        const BackgroundPictures pictures = model.Result();
        const double share = ShareOf(MatOf(pictures.foreground()));
        const bool justLearnt = state == Ready && run.learntAt < 0;
        if (justLearnt) {
            run.learntAt = seconds;
            run.learntIndex = static_cast<std::size_t>(i);
        }
        run.seconds.push_back(seconds);
        run.percent.push_back(share * 100);
        if (IsShown(i, justLearnt, clip)) {
            run.instants.push_back(
                {seconds, state, share, frame.clone(), CloneOf(pictures.foreground()), CloneOf(pictures.background())});
        }
        progress.Advance();
    }
    return run;
}

std::string Letter(std::size_t index) {
    return std::string(1, static_cast<char>('A' + index));
}

Plot SharePlot(const Run& run) {
    Plot plot;
    plot.title = "Share of the frame that is foreground, over time";
    plot.xLabel = "time, s";
    plot.yLabel = "foreground, % of the frame";
    plot.x = run.seconds;
    plot.y = run.percent;
    const double learnt = run.learntAt >= 0 ? run.learntAt : run.seconds.back();
    plot.bands = {{0, learnt, "learning"}};
    for (std::size_t i = 0; i < run.instants.size(); ++i) plot.marks.push_back({run.instants[i].seconds, Letter(i)});
    return plot;
}

std::string InstantHtml(const Instant& instant, const std::string& letter) {
    const std::string time = Number(instant.seconds, 1) + " s";
    return R"(<div class="instant"><h3><span class="badge">)" + letter + "</span>" + time + R"( <span class="quiet">)" +
           (instant.state == Ready ? "learnt" : "learning") + " &middot; foreground " + Number(instant.share * 100, 2) +
           "&nbsp;%</span></h3><div class=\"three\">\n" +
           html::Figure(html::Jpeg(instant.frame, kShownWidth, "Frame at " + time), "frame") +
           html::Figure(html::Png(instant.foreground, kShownWidth, "Foreground mask at " + time), "foreground mask") +
           html::Figure(html::Jpeg(instant.background, kShownWidth, "Background at " + time), "background") +
           "</div></div>\n";
}

double MeanAfterLearning(const Run& run) {
    double sum = 0;
    for (std::size_t i = run.learntIndex; i < run.percent.size(); ++i) sum += run.percent[i];
    return sum / static_cast<double>(run.percent.size() - run.learntIndex);
}

std::string Facts(const Run& run) {
    std::string facts = html::Fact(
        Number(Quantile(run.milliseconds, 0.5), 1) + "&nbsp;ms",
        "per frame, median; 95&nbsp;% take under " + Number(Quantile(run.milliseconds, 0.95), 1) + "&nbsp;ms");
    if (run.learntAt < 0) return facts + html::Fact("&ndash;", "the clip ended before the background was learnt");
    return facts + html::Fact(Number(run.learntAt, 1) + "&nbsp;s", "until the background was learnt") +
           html::Fact(Number(MeanAfterLearning(run), 2) + "&nbsp;%",
                      "of the frame is foreground on average after that");
}

}  // namespace

Section BackgroundSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);
    const Plot plot = SharePlot(run);
    const Instant& last = run.instants.back();

    Section section;
    section.id = "background-model";
    section.title = "Background model";
    section.summary = "Learns what stands still in a video and marks what differs from it.";
    section.input = html::Escape(clip.name) + ", " + std::to_string(run.seconds.size()) + " frames";
    section.result = html::Jpeg(Mark(last.frame, last.foreground), kTableWidth, "A frame with its foreground marked");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.body = "<div class=\"facts\">\n" + Facts(run) + "</div>\n<h3>How much of the frame is foreground</h3>\n" +
                   Svg(plot) +
                   "<p class=\"quiet\">Letters mark the instants shown below. The background takes over most of a "
                   "change in 10 s, four times faster while it is being learnt.</p>\n";
    for (std::size_t i = 0; i < run.instants.size(); ++i) section.body += InstantHtml(run.instants[i], Letter(i));
    return section;
}

}  // namespace quarry::command
