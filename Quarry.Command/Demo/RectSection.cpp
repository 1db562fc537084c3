#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Progress.h"
#include "Timing.h"
#include "Tracking.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr double kAngles[] = {-30, 0, 30, 75};
constexpr int kFollowed = 120;  // frames
constexpr int kInstants = 8;
constexpr double kRoom = 1.4;  // around the target, as a share of its longer side
constexpr int kShownWidth = 340;
constexpr int kTableWidth = 480;
const cv::Scalar kOutline(40, 120, 255);  // B, G, R: orange

/// Cuts, and keeps the time that each took.
class Bench {
public:
    cv::Mat Cut(const cv::Mat& picture, const TurnedRect& rect) {
        const Stopwatch watch;
        cv::Mat part = CloneOf(cut(ViewOf(picture), rect));
        milliseconds.push_back(watch.Milliseconds());
        return part;
    }

    double Median() const { return Quantile(milliseconds, 0.5); }

private:
    RectExtractor cut;
    std::vector<double> milliseconds;
};

cv::Mat Outlined(const cv::Mat& picture, const TurnedRect& rect) {
    cv::Mat marked = picture.clone();
    cv::Point2f corners[4];
    cv::RotatedRect(cv::Point(rect.centerX, rect.centerY), cv::Size(rect.width, rect.height),
                    static_cast<float>(rect.degrees))
        .points(corners);
    const int line = std::max(1, picture.cols / 200);
    for (int i = 0; i < 4; ++i) cv::line(marked, corners[i], corners[(i + 1) % 4], kOutline, line, cv::LINE_AA);
    return marked;
}

/// The middle of a picture at several angles, each over its cut.
std::string Turned(const Picture& picture, Bench& bench) {
    const cv::Mat& pixels = picture.pixels;
    const int height = std::max(3, std::min(pixels.cols, pixels.rows) / 2);
    std::string pictures;
    std::string cuts;
    for (const double angle : kAngles) {
        const TurnedRect rect = {pixels.cols / 2, pixels.rows / 2, height * 4 / 3, height, angle};
        const std::string named = Number(angle, 0) + "&deg;";
        pictures += html::Figure(html::Jpeg(Outlined(pixels, rect), kShownWidth, picture.name + ", a rectangle in it"),
                                 "turned by " + named);
        cuts += html::Figure(html::Jpeg(bench.Cut(pixels, rect), kShownWidth, "What is in the rectangle"), "its cut");
    }
    return R"(<div class="four">)" + pictures + cuts + "</div>\n";
}

/// What surrounds a target that is followed, at instants one after the other.
std::vector<std::pair<double, cv::Mat>> Follow(const Clip& clip, Bench& bench) {
    const cv::Size& target = clip.target.place.size();
    const int height = cvRound(std::max(target.width, target.height) * kRoom);
    const int count = std::min(kFollowed, clip.frames - clip.target.frame);
    const int step = std::max(1, count / kInstants);
    std::vector<std::pair<double, cv::Mat>> instants;
    Tracker tracker(clip.target.place);
    Progress progress("cutting", "frames", count);
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; i < clip.target.frame + count && next(frame); ++i) {
        const int since = i - clip.target.frame;
        if (since < 0) continue;
        const cv::Rect place = tracker.Take(frame).target;
        const cv::Mat cut =
            bench.Cut(frame, {place.x + place.width / 2, place.y + place.height / 2, height * 4 / 3, height, 0});
        if (since % step == 0 && instants.size() < kInstants) instants.emplace_back(i / clip.framesPerSecond, cut);
        progress.Advance();
    }
    return instants;
}

}  // namespace

Section RectSection(const Footage& footage) {
    const Clip& clip = footage.clip;
    Bench bench;
    const auto instants = Follow(clip, bench);
    std::string followed;
    for (const auto& [seconds, cut] : instants) {
        const std::string time = Number(seconds, 1) + "&nbsp;s";
        followed += html::Figure(html::Jpeg(cut, kShownWidth, "The surroundings of the target"), time);
    }

    Section section;
    section.id = "rect-extractor";
    section.title = "Turned rectangles";
    section.summary = "Cuts a rectangle at any angle out of a picture and turns it upright.";
    section.input = html::Escape(clip.name) + ", around " + html::Escape(clip.target.what) + ", and " +
                    html::Escape(footage.pictures.front().name);
    section.result = html::Jpeg(instants.front().second, kTableWidth, "A cut");
    section.milliseconds = bench.Median();
    section.counted = "per cut of " + std::to_string(instants.front().second.cols) + " &times; " +
                      std::to_string(instants.front().second.rows);
    section.body = "<h3>One place, several angles</h3>\n" + Turned(footage.pictures.front(), bench) +
                   "<h3>Cut around a target that is followed</h3>\n<div class=\"four\">" + followed +
                   "</div>\n<p class=\"quiet\">The correlation tracker says where the target is; each cut is centred "
                   "on it. What lies beyond the frame is black.</p>\n";
    return section;
}

}  // namespace quarry::command
