#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Detection.h"
#include "Places.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr int kSearched = 40;  // frames of the clip
constexpr int kInstants = 6;
constexpr float kSensitivities[] = {0.1F, 0.4F, 0.6F};
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

DetectionView Search(PeopleDetector& detector, const cv::Mat& frame) {
    const ImageView pixels = ViewOf(frame);
    const Stopwatch watch;
    const Detections people = detector(pixels);
    const double milliseconds = watch.Milliseconds();
    return {PlacesOf(people, {{0, 0}, frame.size()}), milliseconds};
}

struct Run {
    int every = 1;  ///< how many frames the searched ones are apart
    Plot count;
    std::vector<double> milliseconds;
    std::vector<cv::Mat> shown;  ///< with the people marked, one per mark of the plot
    cv::Mat crowded;             ///< the frame that shows the most people
};

int RoundedUp(int count, int parts) {
    return (count + parts - 1) / parts;
}

Run Play(const Clip& clip) {
    Run run;
    run.every = std::max(1, RoundedUp(clip.frames, kSearched));
    const int searched = RoundedUp(clip.frames, run.every);
    const int showEvery = std::max(1, RoundedUp(searched, kInstants));
    run.count.title = "People found over time";
    run.count.xLabel = "time, s";
    run.count.yLabel = "people found";
    PeopleDetector detector({0.4F});
    Progress progress("people", "frames", searched);
    const auto next = clip.Play();
    std::size_t most = 0;
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        if (i % run.every != 0) continue;
        const DetectionView view = Search(detector, frame);
        const double seconds = i / clip.framesPerSecond;
        run.milliseconds.push_back(view.milliseconds);
        run.count.x.push_back(seconds);
        run.count.y.push_back(static_cast<double>(view.found.size()));
        if (run.crowded.empty() || view.found.size() > most) {
            most = view.found.size();
            run.crowded = frame.clone();
        }
        if (i / run.every % showEvery == 0) {
            run.count.marks.push_back({seconds, std::string(1, static_cast<char>('A' + run.shown.size()))});
            run.shown.push_back(MarkFound(frame, view.found));
        }
        progress.Advance();
    }
    return run;
}

std::string Instants(const Run& run) {
    std::string figures;
    for (std::size_t i = 0; i < run.shown.size(); ++i) {
        const std::string time = Number(run.count.marks[i].x, 1) + " s";
        figures += html::Figure(html::Jpeg(run.shown[i], kShownWidth, "The people found at " + time),
                                run.count.marks[i].label + " &middot; " + time);
    }
    return R"(<div class="three">)" + figures + "</div>\n";
}

/// One frame, searched ever more finely.
std::string SensitivitiesHtml(const cv::Mat& frame) {
    std::string figures;
    for (const float sensitivity : kSensitivities) {
        PeopleDetector detector({sensitivity});
        const DetectionView view = Search(detector, frame);
        const std::string name = "sensitivity " + Number(static_cast<double>(sensitivity), 1);
        figures += html::Figure(html::Jpeg(MarkFound(frame, view.found), kShownWidth, "People at " + name),
                                R"(<span class="pair"><span>)" + name + ": " + std::to_string(view.found.size()) +
                                    " found</span><b>" + html::Time(view.milliseconds) + "</b></span>");
    }
    return "<h3>How finely it searches</h3>\n<p class=\"quiet\">The searched frame with the most people, from the "
           "coarsest search on. Bold: time for this frame.</p>\n<div class=\"three\">" +
           figures + "</div>\n";
}

}  // namespace

Section PeopleSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    const Run run = Play(clip);
    const std::string frames = std::to_string(run.milliseconds.size());

    Section section;
    section.id = "people-detector";
    section.title = "People detector";
    section.summary = "Finds standing and walking people, in each frame for itself.";
    section.input = html::Escape(clip.name) + ", " + frames + " frames";
    section.result = html::Jpeg(run.shown[run.shown.size() / 2], kTableWidth, "A frame with the people marked");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.body = R"(<div class="facts">)" +
                   html::Fact(html::Time(section.milliseconds), "per frame, median; 95&nbsp;% take under " +
                                                                    html::Time(Quantile(run.milliseconds, 0.95))) +
                   html::Fact(Number(Quantile(run.count.y, 1), 0), "people found in one frame at most") +
                   html::Fact(Number(Quantile(run.count.y, 0.5), 0), "people found in the median") +
                   "</div>\n<h3>How many are found</h3>\n" + Svg(run.count) + "<p class=\"quiet\">One frame in " +
                   std::to_string(run.every) +
                   " was searched, at sensitivity 0.4. Letters mark the instants shown below. A rectangle has a margin "
                   "around the person and is 128 pixels high or higher, so smaller people are missed.</p>\n" +
                   Instants(run) + SensitivitiesHtml(run.crowded);
    return section;
}

}  // namespace quarry::command
