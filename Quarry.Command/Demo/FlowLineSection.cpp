#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "FlowPicture.h"
#include "Foreground.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr int kEvery = 2;        // of so many frames one is taken
constexpr double kScaled = 0.5;  // of the frames, in both directions
constexpr int kValues = 96;
constexpr int kShownWidth = 640;

struct Run {
    cv::Mat frame;  ///< with the line, from the middle of the clip
    cv::Size size;  ///< of the frames as they were taken
    HeatStrip strip;
    Plot mean;
    std::vector<double> milliseconds;      ///< of the line
    std::vector<double> flowMilliseconds;  ///< of the flow before it
};

Run Play(const Clip& clip) {
    Run run;
    run.strip.title = "Motion across the line over time";
    run.strip.xLabel = "time, s";
    run.strip.yLabel = "place on the line, %";
    run.strip.unit = "px";
    run.mean.title = "Mean motion across the line over time";
    run.mean.xLabel = "time, s";
    run.mean.yLabel = "mean motion, pixels";
    run.mean.fromZero = false;
    DenseOpticalFlow calculator;
    OpticalFlowLine measure;
    Progress progress("motion across a line", "frames", (clip.frames + kEvery - 1) / kEvery);
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        if (i <= clip.frames / 2) frame.copyTo(run.frame);
        if (i % kEvery != 0) continue;
        cv::Mat halved;
        cv::resize(frame, halved, {}, kScaled, kScaled, cv::INTER_AREA);
        run.size = halved.size();
        const cv::Mat redFirst = RedFirst(halved);
        const Stopwatch flowWatch;
        calculator.Update(ViewOf(redFirst));
        const FlowResult field = calculator.Result();
        if (i > 0) run.flowMilliseconds.push_back(flowWatch.Milliseconds());
        const Stopwatch watch;
        const OpticalFlowLine::Values across = measure(field, clip.line, kValues);
        run.milliseconds.push_back(watch.Milliseconds());
        const std::vector<float> values(across.begin(), across.end());
        run.strip.x.push_back(i / clip.framesPerSecond);
        run.strip.columns.push_back(values);
        run.mean.x.push_back(i / clip.framesPerSecond);
        run.mean.y.push_back(static_cast<double>(MeanAcross(values)));
        progress.Advance();
    }
    MarkLine(run.frame, clip.line);
    return run;
}

static_assert(kEvery == 2 && kScaled == 0.5, "the page says so in words");

std::string HowTaken(const Run& run, const Clip& clip) {
    return "Every second frame was taken, scaled to " + std::to_string(run.size.width) + " &times; " +
           std::to_string(run.size.height) + "; motion is in pixels of these frames from one to the next, " +
           Number(kEvery / clip.framesPerSecond, 2) + "&nbsp;s apart.";
}

}  // namespace

Section FlowLineSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);

    Section section;
    section.id = "optical-flow-line";
    section.title = "Motion across a line";
    section.summary = "Reads a motion field along a line: who crosses it, where and which way.";
    section.input =
        html::Escape(clip.name) + ", " + std::to_string(run.milliseconds.size()) + " frames, scaled to a half";
    section.result = SparklineSvg(run.strip);
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "without the flow";
    section.body =
        R"(<div class="inset">)" +
        html::Figure(html::Jpeg(run.frame, kShownWidth, "The line in a frame"), "The line; the dot is its start.") +
        R"(<div class="stack">)" + html::Fact(html::Time(section.milliseconds), "per frame, median, for the line") +
        html::Fact(html::Time(Quantile(run.flowMilliseconds, 0.5)), "per frame, median, for the flow before it") +
        html::Fact(std::to_string(kValues), "values along the line") + "</div></div>\n" +
        "<h3>Motion across the line</h3>\n" + Svg(run.strip) +
        R"(<p class="quiet">Each column is an instant, from the line&rsquo;s start at the bottom to its end at the top.
Orange moves to the right of somebody who walks along the line from its start, blue to the left. )" +
        HowTaken(run, clip) + "</p>\n<h3>The mean along the line</h3>\n" + Svg(run.mean);
    return section;
}

}  // namespace quarry::command
