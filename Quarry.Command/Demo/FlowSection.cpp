#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Section.h"
#include "FlowPicture.h"
#include "Foreground.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr int kInstants = 3;
constexpr int kFramesPerInstant = 4;  // the first is where the motion starts from
constexpr double kFullMotion = 5;     // pixels per frame
constexpr int kWheel = 190;
constexpr int kShownWidth = 560;
constexpr int kTableWidth = 480;

struct Instant {
    double seconds;
    Speed speed;
    cv::Mat frame;
    cv::Mat picture;
};

struct Run {
    std::vector<double> milliseconds;
    std::vector<Instant> instants;
};

/// Plays a few frames at each of the instants: the flow of all frames would take most of the demo's time.
Run Play(const Clip& clip) {
    Run run;
    const int apart = std::max(kFramesPerInstant, clip.frames / (kInstants + 1));
    DenseOpticalFlow calculator;
    Progress progress("flow", "frames", kInstants * kFramesPerInstant);
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        const int place = i % apart;
        const bool counts = static_cast<int>(run.instants.size()) < kInstants && (i >= apart || clip.frames <= apart);
        if (!counts || place >= kFramesPerInstant) continue;
        const cv::Mat redFirst = RedFirst(frame);
        const Stopwatch watch;
        calculator.Update(ViewOf(redFirst));
        const FlowResult field = calculator.Result();
        if (place > 0) run.milliseconds.push_back(watch.Milliseconds());
        progress.Advance();
        if (place < kFramesPerInstant - 1 && i < clip.frames - 1) continue;
        const cv::Mat motion = MatOf(field);
        run.instants.push_back(
            {i / clip.framesPerSecond, SpeedOf(motion), frame.clone(), FlowPicture(motion, kFullMotion)});
    }
    return run;
}

std::string InstantHtml(const Instant& instant) {
    const std::string time = Number(instant.seconds, 1) + " s";
    return "<h3>" + time + R"( <span class="quiet">)" + Number(instant.speed.mean, 2) +
           " pixels per frame in the mean, " + Number(instant.speed.maximum, 1) + " at most</span></h3>\n" +
           R"(<div class="two">)" + html::Figure(html::Jpeg(instant.frame, kShownWidth, "Frame at " + time), "frame") +
           html::Figure(html::Jpeg(instant.picture, kShownWidth, "Motion at " + time), "motion") + "</div>\n";
}

}  // namespace

Section FlowSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);

    Section section;
    section.id = "dense-optical-flow";
    section.title = "Dense optical flow";
    section.summary = "How far every pixel moved since the frame before.";
    section.input = html::Escape(clip.name) + ", " + std::to_string(run.milliseconds.size()) + " pairs of frames";
    section.result = html::Jpeg(run.instants.front().picture, kTableWidth, "Motion in colour");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.body = R"(<div class="legend"><div class="wheel">)" +
                   html::Png(ColourWheel(kWheel), kWheel, "Wheel of colours, one for each direction") +
                   R"(</div><p class="quiet">The colour is the direction of the motion, that in which it lies on the
wheel; the brightness is the speed, up to )" +
                   Number(kFullMotion, 0) +
                   R"( pixels per frame. What stands still is black. Frames are taken as they are, at full size, but
only a few of them: this is slow work.</p></div>
)";
    for (const Instant& instant : run.instants) section.body += InstantHtml(instant);
    return section;
}

}  // namespace quarry::command
