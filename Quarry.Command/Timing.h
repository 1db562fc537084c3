#pragma once

#include <chrono>
#include <vector>

namespace quarry::command {

/// Wall time since it was made.
class Stopwatch {
public:
    double Seconds() const { return std::chrono::duration<double>(Clock::now() - start).count(); }
    double Milliseconds() const { return Seconds() * 1000; }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start = Clock::now();
};

/// The value that the share `rank` of the values does not exceed: 0.5 is the median. 0 when there are none.
double Quantile(std::vector<double> values, double rank);

}  // namespace quarry::command
