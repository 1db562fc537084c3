#pragma once

#include <cmath>
#include <cstdint>

namespace quarry::command {

/// Frames per second times this is ticks per frame.
constexpr double kTicksPerSecond = 10'000'000;

/// The time of a frame by its index, in ticks of 100 ns; never 0, since a clock that stands at 0 has not begun.
inline uint64_t TimestampOf(int frame, double framesPerSecond) {
    return static_cast<uint64_t>(std::llround((frame + 1) * kTicksPerSecond / framesPerSecond));
}

}  // namespace quarry::command
