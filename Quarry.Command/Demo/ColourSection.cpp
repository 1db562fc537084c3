#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Body.h"
#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Progress.h"
#include "Timing.h"
#include "Tracking.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr int kShownWidth = 340;
constexpr std::size_t kInstants = 4;
const cv::Scalar kOutline(40, 120, 255);  // B, G, R: orange

/// What is compared, and goes along with the target: the torso of a body where one is known.
cv::Rect PartOf(const Clip& clip) {
    return clip.body ? cv::boundingRect(AreasOf(*clip.body, clip.size).torso) : clip.target.place;
}

cv::Point MiddleOf(const cv::Rect& place) {
    return place.tl() + cv::Point(place.width / 2, place.height / 2);
}

struct Run {
    Plot plot;
    std::vector<double> milliseconds;
    std::vector<cv::Mat> views;  ///< the part and what surrounds it, one per value of the plot
};

/// Cuts of a fixed size.
class Cuts {
public:
    explicit Cuts(const cv::Size& size_) : size(size_) {}

    cv::Mat Around(const cv::Mat& frame, const cv::Point& middle) {
        return CloneOf(cut(ViewOf(frame), {middle.x, middle.y, size.width, size.height, 0}));
    }

private:
    cv::Size size;
    RectExtractor cut{{Interpolation::Nearest}};
};

cv::Mat Outlined(const cv::Mat& view, const cv::Size& part) {
    cv::Mat outlined = view.clone();
    cv::rectangle(outlined, cv::Rect({(view.cols - part.width) / 2, (view.rows - part.height) / 2}, part), kOutline);
    return outlined;
}

Run Play(const Clip& clip) {
    Run run;
    run.plot.title = "Likeness of colours over time";
    run.plot.xLabel = "time, s";
    run.plot.yLabel = "correlation with the start";
    run.plot.name = "target followed";
    run.plot.secondName = "place it left";
    const cv::Rect part = PartOf(clip);
    const cv::Point start = MiddleOf(part);
    const cv::Point fromTarget = start - MiddleOf(clip.target.place);
    Cuts parts(part.size());
    Cuts surroundings({part.height * 8 / 3, part.height * 2});
    Tracker tracker(clip.target.place);
    ColorComparison compare;
    Progress progress("colours", "frames", clip.frames - clip.target.frame);
    const auto next = clip.Play();
    cv::Mat frame;
    cv::Mat first;
    for (int i = 0; next(frame); ++i) {
        if (i < clip.target.frame) continue;
        const cv::Point place = MiddleOf(tracker.Take(frame).target) + fromTarget;
        const cv::Mat followed = parts.Around(frame, place);
        const cv::Mat left = parts.Around(frame, start);
        if (first.empty()) first = left;
        const Stopwatch watch;
        const double likeness = compare(ViewOf(first), ViewOf(followed));
        run.milliseconds.push_back(watch.Milliseconds());
        run.plot.x.push_back(i / clip.framesPerSecond);
        run.plot.y.push_back(likeness);
        run.plot.second.push_back(compare(ViewOf(first), ViewOf(left)));
        run.views.push_back(Outlined(surroundings.Around(frame, place), part.size()));
        progress.Advance();
    }
    return run;
}

/// Some instants from the first to the last; their letters go to the plot.
std::string Instants(Run& run) {
    const std::size_t count = std::min(kInstants, run.views.size());
    std::string figures;
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t i = count == 1 ? 0 : k * (run.views.size() - 1) / (count - 1);
        const std::string letter(1, static_cast<char>('A' + k));
        run.plot.marks.push_back({run.plot.x[i], letter});
        figures += html::Figure(html::Jpeg(run.views[i], kShownWidth, "The target"),
                                R"(<span class="pair"><span>)" + letter + " &middot; " + Number(run.plot.x[i], 1) +
                                    "&nbsp;s</span><b>" + Number(run.plot.y[i], 2) + "</b></span>");
    }
    return R"(<div class="four">)" + figures + "</div>\n";
}

}  // namespace

Section ColourSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    Run run = Play(clip);
    const std::string instants = Instants(run);

    Section section;
    section.id = "colour-comparison";
    section.title = "Colour comparison";
    section.summary = "How alike the hues and saturations of the same area are in two pictures.";
    section.input = html::Escape(clip.name) + ", " + (clip.body ? "the jacket of one of " : "") +
                    html::Escape(clip.target.what) + ", " + std::to_string(run.views.size()) + " frames";
    section.result = SparklineSvg(run.plot);
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    const cv::Size part = PartOf(clip).size();
    section.counted = "per pair of " + std::to_string(part.width) + " &times; " + std::to_string(part.height);
    section.body =
        "<div class=\"facts\">" +
        html::Fact(Number(Quantile(run.plot.y, 0.5), 2), "correlation of the followed target, median") +
        html::Fact(Number(Quantile(run.plot.second, 0.5), 2), "correlation of the place it left, median") +
        "</div>\n<h3>Is it still the same?</h3>\n" + Svg(run.plot) +
        "<p class=\"quiet\">Each frame against the first: the part that goes along with what the correlation tracker "
        "follows (outlined below), and the place where it was at first. 1 is alike, 0 nothing in common.</p>\n" +
        instants;
    return section;
}

}  // namespace quarry::command
