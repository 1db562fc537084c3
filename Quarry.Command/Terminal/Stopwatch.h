#pragma once

#include <chrono>

namespace quarry::command {

/// Measures the wall time since its construction.
class Stopwatch {
public:
    double Seconds() const { return std::chrono::duration<double>(Clock::now() - start).count(); }
    double Milliseconds() const { return Seconds() * 1000; }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start = Clock::now();
};

}  // namespace quarry::command
