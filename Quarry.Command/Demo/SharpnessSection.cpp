#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Demo/Gallery.h"
#include "Demo/Html.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

/// Of the Gaussian, in pixels.
constexpr double kSigmas[] = {8, 4, 2, 1, 0.5, 0};
std::vector<Measured> Blurred(const Picture& picture, VarianceOfLaplacian& measure) {
    std::vector<Measured> series;
    for (const double sigma : kSigmas) {
        cv::Mat pixels = picture.pixels.clone();
        if (sigma > 0) cv::GaussianBlur(pixels, pixels, {}, sigma);
        const std::string name = sigma > 0 ? "&sigma; = " + Number(sigma, sigma < 1 ? 1 : 0) + "&nbsp;px" : "as it is";
        const std::string alt = picture.name + (sigma > 0 ? ", blurred" : "");
        series.push_back({name, alt, MiddleOf(pixels, kCut), measure(ViewOf(pixels))});
    }
    return series;
}

std::vector<Measured> FromBlurredToSharp(const std::vector<Picture>& pictures, VarianceOfLaplacian& measure) {
    std::vector<Measured> series;
    series.reserve(pictures.size());
    for (const Picture& picture : pictures) {
        series.push_back({html::Escape(picture.name), picture.name, MiddleOf(picture.pixels, kCut),
                          measure(ViewOf(picture.pixels))});
    }
    std::sort(series.begin(), series.end(),
              [](const auto& left, const auto& right) { return left.variance < right.variance; });
    return series;
}

/// Sharpness of each frame; `milliseconds` takes what each one took.
Plot OverTime(const Clip& clip, VarianceOfLaplacian& measure, std::vector<double>& milliseconds) {
    Plot plot;
    plot.title = "Sharpness of the frames over time";
    plot.xLabel = "time, s";
    plot.yLabel = "sharpness, grey levels²";
    plot.fromZero = clip.drawn;
    Progress progress("sharpness", "frames", clip.frames);
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        const Stopwatch watch;
        const float variance = measure(ViewOf(frame));
        milliseconds.push_back(watch.Milliseconds());
        plot.x.push_back(i / clip.framesPerSecond);
        plot.y.push_back(variance);
        progress.Advance();
    }
    return plot;
}

std::string Facts(const Plot& plot, const std::vector<double>& milliseconds) {
    const auto [low, high] = std::minmax_element(plot.y.begin(), plot.y.end());
    return "<div class=\"facts\">\n" +
           html::Fact(
               Number(Quantile(milliseconds, 0.5), 1) + "&nbsp;ms",
               "per frame, median; 95&nbsp;% take under " + Number(Quantile(milliseconds, 0.95), 1) + "&nbsp;ms") +
           html::Fact(Number(*low, 0) + " &ndash; " + Number(*high, 0), "grey levels&sup2;, over the clip") +
           html::Fact(Number(Quantile(plot.y, 0.5), 0), "grey levels&sup2;, median of the clip") + "</div>\n";
}

}  // namespace

Section SharpnessSection(const Footage& footage) {
    VarianceOfLaplacian measure;
    std::vector<double> milliseconds;
    const Plot plot = OverTime(footage.clip, measure, milliseconds);

    Section section;
    section.id = "frame-sharpness";
    section.title = "Sharpness";
    section.summary = "The variance of the Laplacian of the grey picture: fine detail raises it, blur lowers it.";
    section.input = html::Escape(footage.clip.name) + ", " + std::to_string(plot.x.size()) + " frames, and " +
                    std::to_string(footage.pictures.size()) + " pictures";
    section.result = SparklineSvg(plot);
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.body = Facts(plot, milliseconds) + "<h3>One picture, from blurred to sharp</h3>\n<p class=\"quiet\">" +
                   html::Escape(footage.pictures.front().name) +
                   " under a Gaussian blur of growing &sigma;. Values are in grey levels&sup2;; bars are on a "
                   "logarithmic scale. Shown pixel by pixel is the middle, measured is the whole picture.</p>\n" +
                   Gallery(Blurred(footage.pictures.front(), measure), "three cuts") +
                   "<h3>Different pictures, from blurred to sharp</h3>\n" +
                   Gallery(FromBlurredToSharp(footage.pictures, measure), "four") +
                   "<h3>Over the time of the clip</h3>\n" + Svg(plot);
    return section;
}

}  // namespace quarry::command
