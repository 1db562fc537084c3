#pragma once

#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>

namespace quarry::command {

/// A frame of a video, or a picture, which is a frame without a time.
struct VideoFrame {
    int index;
    double seconds;
    uint64_t timestamp;  ///< ticks of 100 ns; 0 for a picture
    cv::Mat pixels;      ///< 8-bit B, G, R, rows packed
};

/// The time of a frame in ticks of 100 ns. It is never 0, which would say that there is no time.
inline uint64_t TimestampOf(int frame, double framesPerSecond) {
    constexpr double kTicksPerSecond = 10'000'000;
    return static_cast<uint64_t>(std::llround((frame + 1) * kTicksPerSecond / framesPerSecond));
}

}  // namespace quarry::command
