#include "support/SampleInputs.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "support/Footage.h"
#include "support/Scenes.h"

namespace quarry::test {

namespace {

constexpr int kTurnsPerSize = 4;
constexpr int kTurns = 8;

int ScaleOf(FrameSize frames) {
    return frames == FrameSize::Small ? 1 : 10;
}

cv::Mat Part(const cv::Mat& picture, const cv::Rect& rect) {
    return picture.empty() ? RandomFrame(rect.width, rect.height, 3) : picture(rect).clone();
}

/// A walker of the clip.
cv::Mat People() {
    const std::vector<cv::Mat> frames = PedestrianFrames(1);
    return Part(frames.empty() ? cv::Mat() : frames[0], {600, 170, 128, 208});
}

cv::Mat Face() {
    return Part(cv::imread((MediaDirectory() / "messi5.jpg").string()), {208, 74, 76, 76});
}

cv::Mat Blobs(int type, int scale) {
    cv::Mat blobs = cv::Mat::zeros(48 * scale, 64 * scale, type);
    cv::rectangle(blobs, {6 * scale, 8 * scale, 20 * scale, 14 * scale}, cv::Scalar::all(255), cv::FILLED);
    cv::circle(blobs, {45 * scale, 28 * scale}, 12 * scale, cv::Scalar::all(200), cv::FILLED);
    return blobs;
}

cv::Mat Fire(int scale) {
    cv::Mat fire = RandomFrame(64 * scale, 48 * scale, 5);
    cv::ellipse(fire, {30 * scale, 24 * scale}, {12 * scale, 16 * scale}, 0, 0, 360, cv::Scalar(40, 150, 255),
                cv::FILLED);
    return fire;
}

cv::Mat Displacements(int scale) {
    cv::Mat flow(48 * scale, 64 * scale, CV_32FC2);
    cv::RNG(9).fill(flow, cv::RNG::UNIFORM, -3, 3);
    return flow;
}

std::vector<FloatPoint> Body() {
    std::vector<FloatPoint> body(17);
    for (std::size_t i = 0; i < body.size(); ++i) {
        body[i] = {i % 2 == 0 ? 0.3F : 0.7F, 0.1F + 0.05F * static_cast<float>(i)};
    }
    return body;
}

std::vector<float> Embedding(uint64_t seed) {
    std::vector<float> embedding(512);
    cv::RNG random(seed);
    for (float& value : embedding) value = random.uniform(-1.0F, 1.0F);
    return embedding;
}

}  // namespace

SampleInputs::SampleInputs(FrameSize frames)
    : scale(ScaleOf(frames)),
      first(MovingSquare(64 * scale, 48 * scale, 0)),
      second(MovingSquare(64 * scale, 48 * scale, 4)),
      people(People()),
      face(Face()),
      noise(RandomFrame(64, 48, 6)),
      fire(Fire(scale)),
      blobs(Blobs(CV_8UC3, scale)),
      mask(Blobs(CV_8UC1, scale)),
      displacements(Displacements(scale)),
      flow{displacements.cols, displacements.rows, reinterpret_cast<AbsVector*>(displacements.data)},
      body(Body()),
      polygon{{0.1F, 0.1F}, {0.9F, 0.1F}, {0.9F, 0.9F}, {0.1F, 0.9F}},
      contour{{0.2F, 0.3F}, {0.5F, 0.4F}, {0.4F, 0.8F}},
      corners{{10, 10}, {50, 12}, {30, 25}, {14, 40}, {48, 38}},
      movedCorners{{14, 13}, {52, 10}, {33, 26}, {18, 41}, {51, 36}},
      firstEmbedding(Embedding(7)),
      secondEmbedding(Embedding(8)) {
    for (int turn = 0; turn < kTurns; ++turn) {
        const cv::Size size = turn < kTurnsPerSize ? cv::Size(64, 48) : cv::Size(80, 56);
        turns.push_back(MovingSquare(size.width * scale, size.height * scale, turn));
    }
}

std::vector<uint8_t> SampleInputs::Bytes() const {
    std::vector<uint8_t> bytes;
    const auto add = [&](const void* from, std::size_t count) {
        const auto* const begin = static_cast<const uint8_t*>(from);
        bytes.insert(bytes.end(), begin, begin + count);
    };
    for (const cv::Mat* const frame :
         {&first, &second, &people, &face, &noise, &fire, &blobs, &mask, &displacements, &turns[0], &turns[1]}) {
        add(frame->data, frame->total() * frame->elemSize());
    }
    for (const auto* const points : {&body, &polygon, &contour, &corners, &movedCorners}) {
        add(points->data(), points->size() * sizeof(FloatPoint));
    }
    for (const auto* const embedding : {&firstEmbedding, &secondEmbedding}) {
        add(embedding->data(), embedding->size() * sizeof(float));
    }
    add(&flow, sizeof(flow));
    return bytes;
}

const SampleInputs& Samples(FrameSize frames) {
    static const SampleInputs small(FrameSize::Small);
    if (frames == FrameSize::Small) return small;
    static const SampleInputs large(FrameSize::Large);
    return large;
}

Image FrameOfTurn(int turn, FrameSize frames) {
    return ImageOf(Samples(frames).turns[static_cast<std::size_t>(turn % kTurns)],
                   kTicksPerSecond * static_cast<uint64_t>(turn + 2) / 2);
}

}  // namespace quarry::test
