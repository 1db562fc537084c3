#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Moving.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Demo/Shots.h"
#include "OutlinePicture.h"
#include "Places.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr double kMargin = 0.25;  // around the object of the close-ups, in its sizes
constexpr int kCloseUp = 340;     // pixels, the longer side
constexpr int kDot = 2;           // pixels

struct Method {
    Tracing tracing;
    const char* name;
};
constexpr Method kMethods[] = {{Tracing::EveryPixel, "every pixel"},
                               {Tracing::RunEnds, "ends of straight runs"},
                               {Tracing::TehChinL1, "what shapes it most, L1"},
                               {Tracing::TehChinKCosine, "what shapes it most, k-cosine"}};

struct Run {
    explicit Run(const Clip& clip) : shots(MovingFrames(clip)) {}

    Plot area;
    Shots shots;
    std::vector<double> milliseconds;
    int found = 0;  ///< frames
    /// Of the second half, when the background is learnt, that with the largest contour.
    MovingFrame largest{};
    float largestArea = 0;  ///< 0..1 of the frame's
};

cv::Rect WholeOf(const cv::Mat& picture) {
    return {{0, 0}, picture.size()};
}

OutlineResult Largest(ObjectContour& find, const cv::Mat& mask) {
    return find(MaskViewOf(mask), RelativeOf(WholeOf(mask), mask.size()));
}

Run Play(const Clip& clip) {
    Run run(clip);
    run.area.title = "Area of the largest contour over time";
    run.area.xLabel = "time, s";
    run.area.yLabel = "area, % of the frame";
    ObjectContour find;
    Progress progress("contours", "frames", MovingFrames(clip));
    const auto next = PlayMoving(clip);
    for (MovingFrame frame; next(frame);) {
        const Stopwatch watch;
        const OutlineResult outline = Largest(find, frame.foreground);
        run.milliseconds.push_back(watch.Milliseconds());
        run.found += outline.empty() ? 0 : 1;
        run.area.x.push_back(frame.seconds);
        run.area.y.push_back(static_cast<double>(outline.area()) * 100);
        if (frame.index >= MovingFrames(clip) / 2 && outline.area() > run.largestArea) {
            run.largest = frame;
            run.largest.pixels = frame.pixels.clone();
            run.largestArea = outline.area();
        }
        if (run.shots.Wants(frame.index)) {
            cv::Mat picture = frame.pixels.clone();
            DrawPolygon(picture, outline, kMarkColour);
            run.shots.Add(frame.seconds, picture, std::to_string(outline.size()) + " points");
        }
        progress.Advance();
    }
    run.area.marks = run.shots.marks();
    return run;
}

/// The contour from near, with a dot for each of its points.
cv::Mat CloseUp(const cv::Mat& frame, Span<FloatPoint> polygon) {
    std::vector<cv::Point> pixels = PixelsOf(polygon, frame.size());
    const cv::Rect object = cv::boundingRect(pixels);
    const int margin = cvCeil(kMargin * std::max(object.width, object.height));
    const cv::Rect near = (object + cv::Size(2 * margin, 2 * margin) - cv::Point(margin, margin)) & WholeOf(frame);
    const double scale = kCloseUp / static_cast<double>(std::max(near.width, near.height));
    cv::Mat picture;
    cv::resize(frame(near), picture, {}, scale, scale, scale > 1 ? cv::INTER_CUBIC : cv::INTER_AREA);
    for (cv::Point& pixel : pixels) {
        pixel = {cvRound((pixel.x - near.x + 0.5) * scale), cvRound((pixel.y - near.y + 0.5) * scale)};
    }
    cv::polylines(picture, pixels, true, kMarkColour, 1, cv::LINE_AA);
    for (const cv::Point& pixel : pixels) cv::circle(picture, pixel, kDot, kMarkColour, cv::FILLED, cv::LINE_AA);
    return picture;
}

/// The largest contour as each of the methods traces it.
std::string Methods(const Run& run) {
    if (run.largestArea == 0) return "";
    std::string figures;
    for (const Method& method : kMethods) {
        ObjectContour find({method.tracing});
        const OutlineResult polygon = Largest(find, run.largest.foreground);
        if (polygon.empty()) continue;
        figures += html::Figure(html::Jpeg(CloseUp(run.largest.pixels, polygon), kCloseUp, "The contour from near"),
                                std::string(method.name) + " &middot; " + std::to_string(polygon.size()) + " points");
    }
    return "<h3>The largest of the second half, at " + Number(run.largest.seconds, 1) +
           R"(&nbsp;s, and which points are kept</h3>
<div class="four">)" +
           figures + "</div>\n";
}

}  // namespace

Section ContourSection(const Footage& footage) {
    const Run run = Play(footage.clip);
    const double share = run.found / static_cast<double>(run.milliseconds.size());

    Section section;
    section.id = "object-contour";
    section.title = "Contour of an object";
    section.summary = "Traces the largest object of a mask, in a rectangle of it or in all.";
    section.input = MovingInput(footage.clip);
    section.result = run.shots.TableHtml("A frame with its largest contour");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "without the background model";
    section.body = R"(<div class="facts">)" +
                   html::Fact(html::Time(section.milliseconds), "per frame, median, without the background model") +
                   html::Fact(Number(share * 100, 0) + "&nbsp;%", "of the frames have an object") +
                   html::Fact(Number(static_cast<double>(run.largestArea) * 100, 2) + "&nbsp;%",
                              "of the frame: the largest of the second half") +
                   "</div>\n<h3>How large it is</h3>\n" + Svg(run.area) +
                   "<p class=\"quiet\">Of each frame the contour of the largest area. Letters mark the instants shown "
                   "below.</p>\n" +
                   run.shots.Html("The contour") + Methods(run);
    return section;
}

}  // namespace quarry::command
