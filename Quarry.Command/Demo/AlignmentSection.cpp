#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

/// In pixels.
using Landmarks = std::array<FloatPoint, SimilarityTransform::kPoints>;
/// In shares of the picture's width and height.
using Shares = std::array<cv::Point2f, SimilarityTransform::kPoints>;

constexpr const char* kPreferred = "baboon.jpg";
const Shares kItsFace = {{{0.344F, 0.111F}, {0.654F, 0.105F}, {0.463F, 0.75F}, {0.385F, 0.87F}, {0.6F, 0.865F}}};
const Shares kMiddle = {{{0.3F, 0.3F}, {0.7F, 0.3F}, {0.5F, 0.5F}, {0.3F, 0.7F}, {0.7F, 0.7F}}};

const cv::Size kAligned(320, 240);
constexpr float kPart = 0.7F;  // of the result that the landmarks take
constexpr int kShownWidth = 340;
constexpr int kTableWidth = 480;
const cv::Scalar kMark(80, 220, 60);  // B, G, R: green

/// How a picture was turned, scaled and shifted before it is aligned.
struct Disorder {
    double angle;  ///< degrees
    double scale;
    double shift;  ///< downwards, share of the height
};
constexpr Disorder kDisorders[] = {{0, 1, 0}, {25, 0.8, 0}, {-40, 0.75, 0.1}, {150, 0.7, -0.05}};

struct Sample {
    cv::Mat picture;
    Landmarks landmarks;
};

Sample Disordered(const Picture& picture, const Shares& shares, const Disorder& disorder) {
    const cv::Mat& pixels = picture.pixels;
    const auto width = static_cast<float>(pixels.cols);
    const auto height = static_cast<float>(pixels.rows);
    cv::Matx23d matrix = cv::getRotationMatrix2D({width / 2, height / 2}, disorder.angle, disorder.scale);
    matrix(1, 2) += disorder.shift * pixels.rows;
    Sample sample;
    cv::warpAffine(pixels, sample.picture, matrix, pixels.size(), cv::INTER_LINEAR);
    for (std::size_t i = 0; i < shares.size(); ++i) {
        const cv::Vec2d place = matrix * cv::Vec3d(shares[i].x * width, shares[i].y * height, 1);
        sample.landmarks[i] = {static_cast<float>(place[0]), static_cast<float>(place[1])};
    }
    return sample;
}

/// The landmarks as they lie in the picture, as large as they fit and in the middle of the result.
Landmarks Layout(const Landmarks& landmarks) {
    const auto byX = [](const FloatPoint& left, const FloatPoint& right) { return left.X < right.X; };
    const auto byY = [](const FloatPoint& left, const FloatPoint& right) { return left.Y < right.Y; };
    const auto [left, right] = std::minmax_element(landmarks.begin(), landmarks.end(), byX);
    const auto [top, bottom] = std::minmax_element(landmarks.begin(), landmarks.end(), byY);
    const auto width = static_cast<float>(kAligned.width);
    const auto height = static_cast<float>(kAligned.height);
    const float scale = kPart * std::min(width / (right->X - left->X), height / (bottom->Y - top->Y));
    const FloatPoint middle = {(left->X + right->X) / 2, (top->Y + bottom->Y) / 2};
    Landmarks layout{};
    std::transform(landmarks.begin(), landmarks.end(), layout.begin(), [&](const FloatPoint& point) {
        return FloatPoint{width / 2 + (point.X - middle.X) * scale, height / 2 + (point.Y - middle.Y) * scale};
    });
    return layout;
}

cv::Mat Marked(const cv::Mat& picture, const Landmarks& landmarks) {
    cv::Mat marked = picture.clone();
    const int size = std::max(4, picture.cols / 20);
    for (const FloatPoint& point : landmarks) {
        cv::drawMarker(marked, {cvRound(point.X), cvRound(point.Y)}, kMark, cv::MARKER_CROSS, size,
                       std::max(1, picture.cols / 160), cv::LINE_AA);
    }
    return marked;
}

/// Mean absolute difference amid the landmarks.
double Apart(const cv::Mat& first, const cv::Mat& second) {
    const cv::Rect middle(kAligned.width * 2 / 5, kAligned.height * 2 / 5, kAligned.width / 5, kAligned.height / 5);
    const double values = 3.0 * middle.area();
    return cv::norm(first(middle), second(middle), cv::NORM_L1) / values;
}

}  // namespace

Section AlignmentSection(const Footage& footage) {
    const auto found = std::find_if(footage.pictures.begin(), footage.pictures.end(),
                                    [](const Picture& picture) { return picture.name == kPreferred; });
    const bool isFace = found != footage.pictures.end();
    const Picture& picture = isFace ? *found : footage.pictures.front();
    SimilarityTransform align({kAligned.width, kAligned.height});
    std::vector<double> milliseconds;
    std::vector<cv::Mat> aligned;
    Landmarks layout{};
    std::string before;
    std::string after;
    for (const Disorder& disorder : kDisorders) {
        const Sample sample = Disordered(picture, isFace ? kItsFace : kMiddle, disorder);
        if (aligned.empty()) layout = Layout(sample.landmarks);
        const Stopwatch watch;
        aligned.push_back(CloneOf(align(ViewOf(sample.picture), sample.landmarks, layout)));
        milliseconds.push_back(watch.Milliseconds());
        before += html::Figure(
            html::Jpeg(Marked(sample.picture, sample.landmarks), kShownWidth, picture.name + " with its landmarks"),
            Number(disorder.angle, 0) + "&deg;, scale " + Number(disorder.scale, 2));
        const std::string apart =
            aligned.size() == 1 ? "" : ", " + Number(Apart(aligned.front(), aligned.back()), 1) + " from the first";
        after += html::Figure(html::Jpeg(Marked(aligned.back(), layout), kShownWidth, picture.name + ", aligned"),
                              "aligned" + apart);
    }

    Section section;
    section.id = "point-alignment";
    section.title = "Alignment by landmarks";
    section.summary = "Turns, scales and shifts a picture so that five landmarks lie where they should.";
    section.input = html::Escape(picture.name) + ", " + std::to_string(aligned.size()) + " ways to lie";
    section.result = html::Jpeg(Marked(aligned.back(), layout), kTableWidth, "An aligned picture");
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted = "per picture";
    section.body = "<h3>From any position into one layout</h3>\n<div class=\"four\">" + before + after +
                   "</div>\n<p class=\"quiet\">Above: the picture turned, scaled and shifted, with its landmarks. "
                   "Below: aligned; the crosses are where the landmarks are wanted. &ldquo;From the first&rdquo; is "
                   "the mean difference amid the landmarks, in grey levels: what two resamplings cost.</p>\n";
    return section;
}

}  // namespace quarry::command
