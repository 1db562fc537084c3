#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

using Body = std::array<FloatPoint, 17>;
using Polygon = std::array<cv::Point, 4>;

/// A standing person, half as high as the frame: shoulders, hips, knees and ankles.
Body StandingPerson() {
    Body body{};
    body[5] = {0.54F, 0.35F};
    body[6] = {0.46F, 0.35F};
    body[11] = {0.53F, 0.52F};
    body[12] = {0.47F, 0.52F};
    body[13] = {0.54F, 0.65F};
    body[14] = {0.46F, 0.65F};
    body[15] = {0.55F, 0.78F};
    body[16] = {0.45F, 0.78F};
    return body;
}

Polygon PlainLimb(const cv::Point& upper, int upperHalf, const cv::Point& lower, int lowerHalf, int lift) {
    return {cv::Point(upper.x - upperHalf, upper.y), cv::Point(upper.x + upperHalf, upper.y),
            cv::Point(lower.x + lowerHalf, lower.y - lift), cv::Point(lower.x - lowerHalf, lower.y - lift)};
}

std::vector<cv::Vec3f> PlainSamples(const cv::Mat& frame, const std::vector<Polygon>& parts) {
    cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8UC1);
    for (Polygon part : parts) {
        for (cv::Point& point : part) {
            point.x = std::clamp(point.x, 0, frame.cols - 1);
            point.y = std::clamp(point.y, 0, frame.rows - 1);
        }
        cv::fillConvexPoly(mask, part.data(), 4, cv::Scalar(255), cv::LINE_8, 0);
    }
    std::vector<cv::Vec3f> samples;
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) {
            if (mask.at<uchar>(y, x) != 0) samples.emplace_back(frame.at<cv::Vec3b>(y, x));
        }
    }
    return samples;
}

void PlainColors(const std::vector<cv::Vec3f>& samples, cv::Mat colors) {
    cv::Mat labels;
    cv::Mat centers;
    cv::kmeans(cv::Mat(samples).reshape(1), 2, labels,
               cv::TermCriteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 10, 1.0), 10, cv::KMEANS_PP_CENTERS,
               centers);
    const int ones = cv::countNonZero(labels);
    const int first = ones < static_cast<int>(samples.size()) - ones ? 0 : 1;
    for (int row = 0; row < 2; ++row) {
        for (int channel = 0; channel < 3; ++channel) {
            colors.at<float>(row, channel) = centers.at<float>(row == 0 ? first : 1 - first, 2 - channel) / 255.0F;
        }
    }
}

cv::Mat Plain(const cv::Mat& frame, const Body& body) {
    std::array<cv::Point, 17> P;
    std::transform(body.begin(), body.end(), P.begin(), [&](const FloatPoint& point) {
        return cv::Point(static_cast<int>(point.X * static_cast<float>(frame.cols)),
                         static_cast<int>(point.Y * static_cast<float>(frame.rows)));
    });
    const double scale = 0.25 * cv::norm(P[6] - P[12]);
    const int hip = static_cast<int>(0.5 * scale);
    const int knee = static_cast<int>(0.4 * scale);
    const int ankle = static_cast<int>(0.3 * scale);
    const auto lift = [&](std::size_t upper, std::size_t lower) {
        return static_cast<int>(0.15 * std::abs(P[upper].y - P[lower].y));
    };
    cv::Mat colors(4, 3, CV_32F);
    PlainColors(PlainSamples(frame, {{P[5], P[6], P[12], P[11]}}), colors.rowRange(0, 2));
    PlainColors(PlainSamples(frame, {PlainLimb(P[11], hip, P[13], knee, 0), PlainLimb(P[12], hip, P[14], knee, 0),
                                     PlainLimb(P[13], knee, P[15], ankle, lift(13, 15)),
                                     PlainLimb(P[14], knee, P[16], ankle, lift(14, 16))}),
                colors.rowRange(2, 4));
    return colors;
}

/// The same, with OpenCV's random numbers started anew, so that both ways draw the same first centres.
Way Seeded(const Way& way) {
    return {[run = way.run] {
                cv::setRNGSeed(1);
                run();
            },
            [result = way.result] {
                cv::setRNGSeed(1);
                return result();
            }};
}

void CompareOn(int width, int height, const std::string& input) {
    const cv::Mat frame = MovingSquare(width, height, width / 8);
    const auto body = std::make_shared<Body>(StandingPerson());
    Compare("KMeanColorExtractor", {"", input, 0.98}, Seeded(Computed([frame, body] { return Plain(frame, *body); })),
            Seeded(Called<KMeanOptions, KMeanData, KMeanResult>(
                CreateCVKMeanColorExtractor, {}, {0, ImageOf(frame), {{17}, body->data()}},
                [](const KMeanResult& result) { return BytesOf(cv::Mat(result.Count, 3, CV_32F, result.Colors)); })));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(640, 480, "640x480");
    CompareOn(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
