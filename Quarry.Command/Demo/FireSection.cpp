#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Figures.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr std::size_t kShown = 2;  // pictures, besides the drawn one
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;
const cv::Size kDrawnSize(480, 360);

/// A tongue of fire, as high as `scale` says.
void DrawTongue(cv::Mat& picture, double scale, const cv::Scalar& colour) {
    constexpr int kSteps = 60;
    constexpr double kHeight = 260;
    constexpr double kHalfWidth = 75;
    const cv::Point foot(picture.cols / 2, picture.rows - 40);
    std::vector<cv::Point> outline;
    for (int i = -kSteps; i <= kSteps; ++i) {
        const double height = 1 - std::abs(i) / static_cast<double>(kSteps);
        const double half = kHalfWidth * scale * std::sin(CV_PI * std::pow(height, 0.6));
        const double sway = 22 * scale * height * std::sin(5 * height);
        outline.emplace_back(foot.x + cvRound(sway + (i < 0 ? -half : half)),
                             foot.y - cvRound(kHeight * scale * height));
    }
    cv::fillPoly(picture, std::vector<std::vector<cv::Point>>{outline}, colour, cv::LINE_AA);
}

Picture DrawnFlame() {
    cv::Mat pixels(kDrawnSize, CV_8UC3, cv::Scalar(48, 36, 30));
    cv::rectangle(pixels, cv::Rect(130, 312, 220, 26), {40, 60, 90}, cv::FILLED);
    cv::circle(pixels, {80, 110}, 34, {40, 30, 190}, cv::FILLED, cv::LINE_AA);
    cv::circle(pixels, {400, 110}, 34, {180, 120, 40}, cv::FILLED, cv::LINE_AA);
    DrawTongue(pixels, 1, {20, 95, 235});
    DrawTongue(pixels, 0.75, {40, 170, 252});
    DrawTongue(pixels, 0.5, {110, 225, 255});
    DrawTongue(pixels, 0.25, {215, 248, 255});
    cv::GaussianBlur(pixels, pixels, {}, 3);
    return {"a drawn flame", pixels};
}

struct Searched {
    Picture picture;
    cv::Mat region;
    double share;  ///< 0..1 of the picture's pixels
    double milliseconds;
};

std::vector<Searched> SearchAll(const std::vector<Picture>& pictures, FirePixels& find) {
    std::vector<Searched> all;
    Progress progress("fire", "pictures", static_cast<int>(pictures.size()));
    for (const Picture& picture : pictures) {
        const Stopwatch watch;
        const FirePixels::Flames flames = find(ViewOf(picture.pixels));
        const double milliseconds = watch.Milliseconds();
        const cv::Mat region = CloneOf(flames);
        all.push_back({picture, region, ShareOf(region), milliseconds});
        progress.Advance();
    }
    return all;
}

/// Those with the largest regions.
std::vector<Searched> MostFlaming(std::vector<Searched> searched) {
    std::stable_sort(searched.begin(), searched.end(),
                     [](const Searched& left, const Searched& right) { return left.share > right.share; });
    if (searched.size() > kShown) searched.erase(searched.begin() + kShown, searched.end());
    return searched;
}

std::string Triple(const Searched& one) {
    const std::string name = html::Escape(one.picture.name);
    return "<h3>" + name + R"( <span class="quiet">)" + Number(one.share * 100, 1) +
           "&nbsp;% of the pixels</span></h3>\n<div class=\"three\">" +
           html::Figure(html::Jpeg(one.picture.pixels, kShownWidth, one.picture.name), "picture") +
           html::Figure(html::Png(one.region, kShownWidth, one.picture.name + ", flame mask"), "flame mask") +
           html::Figure(
               html::Jpeg(OutlineRegion(one.picture.pixels, one.region), kShownWidth, one.picture.name + ", outlined"),
               "outlined") +
           "</div>\n";
}

/// Hue from left to right, lightness from bottom to top; what is no flame colour is nearly grey.
cv::Mat ColourChart(FirePixels& find, double saturation) {
    const cv::Size cells(60, 20);
    constexpr int kCell = 8;            // pixels
    constexpr double kWashedOut = 0.8;  // towards grey
    const cv::Scalar grey(96, 92, 90);
    cv::Mat colours(cells, CV_8UC3);
    for (int y = 0; y < cells.height; ++y) {
        for (int x = 0; x < cells.width; ++x) {
            colours.at<cv::Vec3b>(y, x) = {cv::saturate_cast<uchar>(180.0 * x / cells.width),
                                           cv::saturate_cast<uchar>(255.0 * (cells.height - y - 0.5) / cells.height),
                                           cv::saturate_cast<uchar>(255 * saturation)};
        }
    }
    cv::cvtColor(colours, colours, cv::COLOR_HLS2BGR);
    for (int y = 0; y < cells.height; ++y) {
        for (int x = 0; x < cells.width; ++x) {
            auto& colour = colours.at<cv::Vec3b>(y, x);
            // The finder judges regions: the colour fills a picture of its own.
            const FirePixels::Flames flames = find(ViewOf(cv::Mat(kCell, kCell, CV_8UC3, cv::Scalar(colour))));
            if (cv::countNonZero(MatOf(flames)) > 0) continue;
            for (int c = 0; c < 3; ++c) {
                colour[c] = cv::saturate_cast<uchar>(colour[c] * (1 - kWashedOut) + grey[c] * kWashedOut);
            }
        }
    }
    cv::Mat chart;
    cv::resize(colours, chart, {}, kCell, kCell, cv::INTER_NEAREST);
    return chart;
}

std::string ChartsHtml(FirePixels& find) {
    const auto chart = [&](double saturation) {
        const std::string caption = "saturation " + Number(saturation * 100, 0) + "&nbsp;%";
        const cv::Mat picture = ColourChart(find, saturation);
        return html::Figure(html::Png(picture, picture.cols, "The flame colours among all hues"), caption);
    };
    return "<h3>Which colours count as flame</h3>\n<p class=\"quiet\">Hue from red over green and blue back to red, "
           "lightness from dark at the bottom to light at the top. What is not a flame colour is washed "
           "out.</p>\n<div class=\"two\">" +
           chart(1) + chart(0.5) + "</div>\n";
}

}  // namespace

Section FireSection(const Footage& footage) {
    FirePixels find;
    const std::vector<Searched> drawn = SearchAll({DrawnFlame()}, find);
    const std::vector<Searched> searched = SearchAll(footage.pictures, find);
    std::vector<double> milliseconds;
    milliseconds.reserve(searched.size());
    for (const Searched& one : searched) milliseconds.push_back(one.milliseconds);
    const Searched& flame = drawn.front();

    Section section;
    section.id = "fire-pixels";
    section.title = "Fire pixels";
    section.summary = "The largest region of a picture that has the colours of a flame.";
    section.input = "a drawn flame, and " + std::to_string(searched.size()) + " pictures";
    section.result =
        html::Jpeg(OutlineRegion(flame.picture.pixels, flame.region), kTableWidth, "A drawn flame, outlined");
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted = "per picture";
    section.body = ChartsHtml(find) + Triple(flame) +
                   "<p class=\"quiet\">The region is grown by up to 10 pixels. Below: the pictures with the largest "
                   "regions. Colour alone decides, so that things which do not burn are found too.</p>\n";
    for (const Searched& one : MostFlaming(searched)) section.body += Triple(one);
    return section;
}

}  // namespace quarry::command
