#include "Demo/Scene.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace quarry::command {
namespace {

constexpr double kStrongestBlur = 3.5;  // pixels, sigma
/// The shapes come in one after the other, so that the background is seen empty first.
constexpr double kFirstEntry = 1;      // seconds
constexpr double kBetweenEntries = 2;  // seconds
constexpr double kBallCrossing = 6;    // seconds
constexpr int kBallRadius = 38;        // pixels

/// Noise at several scales, each coarser one stronger, in one colour.
cv::Mat Texture(cv::Size size, uint64_t seed, const cv::Scalar& colour) {
    cv::RNG random(seed);
    cv::Mat sum(size, CV_32FC1, cv::Scalar(0));
    for (int cell = 2; cell <= 128; cell *= 4) {
        cv::Mat noise(size.height / cell + 2, size.width / cell + 2, CV_32FC1);
        random.fill(noise, cv::RNG::UNIFORM, -1.0, 1.0);
        cv::resize(noise, noise, size, 0, 0, cv::INTER_CUBIC);
        sum += noise * (9 + 3 * std::log2(cell));
    }
    cv::Mat channels[3];
    for (int c = 0; c < 3; ++c) sum.convertTo(channels[c], CV_8U, 1, colour[c]);
    cv::Mat texture;
    cv::merge(channels, 3, texture);
    return texture;
}

/// Where a shape that enters at `entry` and crosses the width in `crossing` seconds has its centre.
int Column(double seconds, double entry, double crossing, int width) {
    constexpr int kBeyondTheEdge = 60;
    const double share = std::fmod(std::max(0.0, seconds - entry), crossing) / crossing;
    return static_cast<int>(share * (width + 2 * kBeyondTheEdge)) - kBeyondTheEdge;
}

cv::Point BallCentre(double seconds, int width) {
    return {Column(seconds, kFirstEntry, kBallCrossing, width), 120 + static_cast<int>(12 * std::sin(seconds * 3))};
}

/// With spots, so that there is something to hold on to when it is followed.
void DrawBall(cv::Mat& frame, const cv::Point& centre) {
    const cv::Scalar dark(30, 70, 150);
    cv::circle(frame, centre, kBallRadius, {60, 200, 250}, cv::FILLED, cv::LINE_AA);
    cv::circle(frame, centre + cv::Point(-13, -8), 12, dark, cv::FILLED, cv::LINE_AA);
    cv::circle(frame, centre + cv::Point(14, -16), 7, {240, 250, 255}, cv::FILLED, cv::LINE_AA);
    cv::circle(frame, centre + cv::Point(10, 14), 15, dark, cv::FILLED, cv::LINE_AA);
    cv::circle(frame, centre + cv::Point(-15, 19), 6, {240, 250, 255}, cv::FILLED, cv::LINE_AA);
}

void DrawShapes(cv::Mat& frame, double seconds) {
    const auto column = [&](int number, double crossing) {
        return Column(seconds, kFirstEntry + number * kBetweenEntries, crossing, frame.cols);
    };
    const int bob = static_cast<int>(12 * std::sin(seconds * 3));

    DrawBall(frame, BallCentre(seconds, frame.cols));

    const int left = frame.cols - column(1, 8) - 35;
    cv::rectangle(frame, cv::Rect(left, 210, 70, 90), {240, 235, 225}, cv::FILLED);

    const cv::Point tip(column(2, 5), 330 - bob);
    const std::vector<cv::Point> triangle = {tip, tip + cv::Point(45, 90), tip + cv::Point(-45, 90)};
    cv::fillConvexPoly(frame, triangle, {40, 40, 30}, cv::LINE_AA);
}

Picture Rings() {
    cv::Mat pixels(kSceneSize, CV_8UC3, cv::Scalar(235, 238, 240));
    for (int radius = 230; radius > 0; radius -= 10) {
        const cv::Scalar colour = radius % 20 == 0 ? cv::Scalar(120, 90, 40) : cv::Scalar(225, 220, 200);
        cv::circle(pixels, {320, 240}, radius, colour, cv::FILLED, cv::LINE_AA);
    }
    return {"drawn: rings", pixels};
}

Picture Lettering() {
    cv::Mat pixels(kSceneSize, CV_8UC3, cv::Scalar(230, 235, 238));
    for (int line = 0; line < 12; ++line) {
        cv::putText(pixels, "sharp edges, sharp letters", {24, 50 + line * 38}, cv::FONT_HERSHEY_COMPLEX, 1.2,
                    {70, 45, 30}, 2, cv::LINE_AA);
    }
    return {"drawn: lettering", pixels};
}

Picture Haze() {
    cv::Mat pixels = Texture(kSceneSize, 5, {150, 130, 110});
    cv::GaussianBlur(pixels, pixels, {}, 6);
    return {"drawn: haze", pixels};
}

}  // namespace

Scene::Scene() : background(Texture(kSceneSize, 1, {105, 118, 112})) {
    cv::rectangle(background, cv::Rect(0, 400, 640, 80), {88, 84, 82}, cv::FILLED);
    for (int x = 20; x < 640; x += 90) cv::rectangle(background, cv::Rect(x, 436, 50, 6), {150, 160, 165}, cv::FILLED);
}

cv::Mat Scene::Draw(double seconds, double progress) const {
    cv::Mat frame = background.clone();
    DrawShapes(frame, seconds);
    const double sigma = kStrongestBlur * std::pow(std::sin(progress * CV_PI), 6);
    if (sigma > 0.2) cv::GaussianBlur(frame, frame, {}, sigma);
    return frame;
}

cv::Rect BallAt(double seconds) {
    constexpr int kSide = 2 * kBallRadius;
    return {BallCentre(seconds, kSceneSize.width) - cv::Point(kSide / 2, kSide / 2), cv::Size(kSide, kSide)};
}

std::vector<Picture> DrawnPictures() {
    constexpr double kAllShapesAreIn = 7.5;  // seconds
    return {{"drawn: scene", Scene().Draw(kAllShapesAreIn, 0)}, Lettering(), Rings(), Haze()};
}

}  // namespace quarry::command
