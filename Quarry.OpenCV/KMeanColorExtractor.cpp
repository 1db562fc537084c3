#include "Quarry.OpenCV/KMeanColorExtractor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.OpenCV/CheckArray.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry.OpenCV/PixelOf.h"
#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/Memory.h"

namespace {

constexpr int kKeypoints = 17;
enum Keypoint {
    LeftShoulder = 5,
    RightShoulder = 6,
    LeftHip = 11,
    RightHip = 12,
    LeftKnee = 13,
    RightKnee = 14,
    LeftAnkle = 15,
    RightAnkle = 16
};

// Half the width of a leg at its joints, as shares of a scale, and the height above the ankle at which the shin ends.
constexpr double kScale = 0.25;  // of the distance from shoulder to hip
constexpr double kHalfHip = 0.5;
constexpr double kHalfKnee = 0.4;
constexpr double kHalfAnkle = 0.3;
constexpr double kAnkleLift = 0.15;  // of the height from knee to ankle

constexpr int kColors = 2;  // per area
constexpr int kIterations = 10;
constexpr double kEpsilon = 1.0;  // grey levels
constexpr int kAttempts = 10;
constexpr float kWhite = 255.0F;

constexpr int kCorners = 4;
using Quadrilateral = std::array<cv::Point, kCorners>;
using Body = std::array<cv::Point, kKeypoints>;

Body PixelsOf(const FloatPoint* keypoints, const cv::Size& frame) {
    Body body;
    std::transform(keypoints, keypoints + kKeypoints, body.begin(),
                   [&](const FloatPoint& point) { return quarry::PixelOf(point, frame.width, frame.height); });
    return body;
}

/// A point moved by some pixels; its coordinates saturate at the limits of int.
cv::Point Moved(const cv::Point& point, int right, int up) {
    return {cv::saturate_cast<int>(int64_t{point.x} + right), cv::saturate_cast<int>(int64_t{point.y} - up)};
}

Quadrilateral Torso(const Body& body) {
    return {body[LeftShoulder], body[RightShoulder], body[RightHip], body[LeftHip]};
}

/// A part of a leg between two joints.
/// @param upperHalf, lowerHalf  half its width at the joint, pixels
/// @param lift  how far above the lower joint it ends, pixels
Quadrilateral Limb(const cv::Point& upper, int upperHalf, const cv::Point& lower, int lowerHalf, int lift = 0) {
    return {Moved(upper, -upperHalf, 0), Moved(upper, upperHalf, 0), Moved(lower, lowerHalf, lift),
            Moved(lower, -lowerHalf, lift)};
}

/// How far above the ankle a shin ends, in pixels: shoes do not count.
int AnkleLift(const cv::Point& knee, const cv::Point& ankle) {
    return quarry::Truncate(kAnkleLift * std::abs(static_cast<double>(knee.y) - ankle.y));
}

std::vector<Quadrilateral> Legs(const Body& body) {
    const double across = static_cast<double>(body[RightShoulder].x) - body[RightHip].x;
    const double down = static_cast<double>(body[RightShoulder].y) - body[RightHip].y;
    const double scale = kScale * std::sqrt(across * across + down * down);
    const int hip = quarry::Truncate(kHalfHip * scale);
    const int knee = quarry::Truncate(kHalfKnee * scale);
    const int ankle = quarry::Truncate(kHalfAnkle * scale);
    return {Limb(body[LeftHip], hip, body[LeftKnee], knee), Limb(body[RightHip], hip, body[RightKnee], knee),
            Limb(body[LeftKnee], knee, body[LeftAnkle], ankle, AnkleLift(body[LeftKnee], body[LeftAnkle])),
            Limb(body[RightKnee], knee, body[RightAnkle], ankle, AnkleLift(body[RightKnee], body[RightAnkle]))};
}

cv::Mat MaskOf(const std::vector<Quadrilateral>& parts, const cv::Size& frame) {
    cv::Mat mask = cv::Mat::zeros(frame, CV_8UC1);
    for (Quadrilateral part : parts) {
        KMeanColorExtractor::FilterPolygonsPoints(part.data(), kCorners, frame.width, frame.height);
        cv::fillConvexPoly(mask, part.data(), kCorners, cv::Scalar(255), cv::LINE_8, 0);
    }
    return mask;
}

/// The pixels under a mask, row by row.
std::vector<cv::Vec3f> SamplesOf(const cv::Mat& frame, const cv::Mat& mask) {
    std::vector<cv::Vec3f> samples;
    for (int y = 0; y < frame.rows; ++y) {
        const auto* const pixels = frame.ptr<cv::Vec3b>(y);
        const auto* const marks = mask.ptr<uchar>(y);
        for (int x = 0; x < frame.cols; ++x) {
            if (marks[x] != 0) samples.emplace_back(pixels[x]);
        }
    }
    return samples;
}

/// Writes the colours of an area, six floats.
/// @return where the next area's go
float* WriteColors(const std::vector<cv::Vec3f>& samples, float* out) {
    const int count = static_cast<int>(samples.size());
    CV_Assert(count >= kColors);  // cv::kmeans would read a single sample of three channels as three samples
    cv::Mat labels;
    cv::Mat centers;
    cv::kmeans(cv::Mat(samples).reshape(1), kColors, labels,
               cv::TermCriteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, kIterations, kEpsilon), kAttempts,
               cv::KMEANS_PP_CENTERS, centers);
    const int ones = cv::countNonZero(labels);
    const int first = ones < count - ones ? 0 : 1;
    for (const int center : {first, 1 - first}) {
        for (int channel = quarry::kFrameChannels - 1; channel >= 0; --channel) {
            *out++ = centers.at<float>(center, channel) / kWhite;
        }
    }
    return out;
}

}  // namespace

KMeanResult KMeanColorExtractor::DoProcess(KMeanData data) {
    const cv::Mat frame = quarry::PackedFrame(data.Image);
    quarry::CheckArray("KMeanData.Keypoints.Points", data.Keypoints.Points, kKeypoints, "points");
    CV_Assert(!frame.empty());  // the loops would run through millions of rows without pixels
    const Body body = PixelsOf(data.Keypoints.Points, frame.size());
    const std::vector<cv::Vec3f> torso = SamplesOf(frame, MaskOf({Torso(body)}, frame.size()));
    const std::vector<cv::Vec3f> legs = SamplesOf(frame, MaskOf(Legs(body), frame.size()));

    quarry::PendingResult result(CreateKMeanResult(2 * kColors), DestroyKMeanResult);
    WriteColors(legs, WriteColors(torso, result->Colors));
    return result.HandOver();
}

void KMeanColorExtractor::DoDisposeData(KMeanResult* result) {
    DestroyKMeanResult(result);
}

void KMeanColorExtractor::FilterPolygonsPoints(cv::Point* points, int count, int width, int height) {
    for (cv::Point* point = points; point != points + count; ++point) {
        point->x = std::max(std::min(point->x, width - 1), 0);
        point->y = std::max(std::min(point->y, height - 1), 0);
    }
}
