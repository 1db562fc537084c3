#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

namespace quarry::test {

constexpr uint64_t kTicksPerSecond = 10'000'000;

/// How large frames are: as small as tests of every step want them, or so large that OpenCV spreads work over threads.
enum class FrameSize { Small, Large };

/// Something for each operation to work on, always the same. Detectors see a cut of real footage where it is there,
/// noise elsewhere.
struct SampleInputs {
    explicit SampleInputs(FrameSize frames);

    /// A number of pixels of the small frame in one of these.
    int16_t Scaled(int pixels) const { return static_cast<int16_t>(pixels * scale); }
    /// Every byte of them, to see that nobody wrote into one.
    std::vector<uint8_t> Bytes() const;

    int scale;       ///< of a frame, 64 x 48 when it is 1
    cv::Mat first;   ///< a square on a textured ground
    cv::Mat second;  ///< the square further right
    cv::Mat people;
    cv::Mat face;
    cv::Mat noise;  ///< always small: to denoise takes long
    cv::Mat fire;
    cv::Mat blobs;
    cv::Mat mask;  ///< of one byte per pixel
    cv::Mat displacements;
    AbsVectorMatrix flow;  ///< over the displacements
    std::vector<FloatPoint> body;
    std::vector<FloatPoint> polygon;
    std::vector<FloatPoint> contour;
    std::vector<FloatPoint> corners;
    std::vector<FloatPoint> movedCorners;
    std::vector<float> firstEmbedding;
    std::vector<float> secondEmbedding;
    std::vector<cv::Mat> turns;  ///< a stream
};

const SampleInputs& Samples(FrameSize frames);

/// The frame of a turn in a stream, half a second after the one before. Every fourth is the first of another size.
Image FrameOfTurn(int turn, FrameSize frames = FrameSize::Small);

}  // namespace quarry::test
