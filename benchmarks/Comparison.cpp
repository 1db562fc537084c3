#include "Comparison.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <utility>
#include <vector>

namespace quarry::bench {

namespace {

/// Turns of one batch take about this long, so that reading the clock costs nothing.
constexpr double kBatchSeconds = 200e-6;
constexpr double kSecondsPerRow = 1.0;

/// Seconds that this thread has been running: other work on the machine does not count.
double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double SecondsOf(const std::function<void()>& run, int times) {
    const double start = ThreadSeconds();
    for (int i = 0; i < times; ++i) run();
    return ThreadSeconds() - start;
}

/// How often a run fits into a batch; the first, cold run is not looked at.
int BatchOf(const std::function<void()>& run) {
    run();
    const double one = std::max(SecondsOf(run, 1), 1e-9);
    return std::clamp(static_cast<int>(std::lround(kBatchSeconds / one)), 1, 100'000);
}

/// @param share  0 the least, 0.5 the median, 1 the greatest
double Quantile(std::vector<double> values, double share) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

void RunInTurns(benchmark::State& state, const Case& row, const Way& plain, const Way& library) {
    if (plain.result() != library.result()) {
        state.SkipWithError("the library's result differs from the plain one");
        return;
    }
    const int plainBatch = BatchOf(plain.run);
    const int libraryBatch = BatchOf(library.run);
    std::vector<double> plainSeconds;
    std::vector<double> librarySeconds;
    std::vector<double> ratios;
    for ([[maybe_unused]] auto _ : state) {
        const double plainTurn = SecondsOf(plain.run, plainBatch);
        const double libraryTurn = SecondsOf(library.run, libraryBatch);
        plainSeconds.push_back(plainTurn / (plainBatch * plain.results));
        librarySeconds.push_back(libraryTurn / (libraryBatch * library.results));
        ratios.push_back(plainSeconds.back() / librarySeconds.back());
        state.SetIterationTime(plainTurn + libraryTurn);
    }
    const double ratio = Quantile(ratios, 0.5);
    state.counters["plain_ns"] = 1e9 * Quantile(plainSeconds, 0.5);
    state.counters["library_ns"] = 1e9 * Quantile(librarySeconds, 0.5);
    state.counters["ratio"] = ratio;
    state.counters["spread"] = (Quantile(ratios, 0.75) - Quantile(ratios, 0.25)) / ratio;
    state.counters["floor"] = row.floor;
    state.counters["ceiling"] = row.ceiling;
}

}  // namespace

std::string BytesOf(const cv::Mat& matrix) {
    const cv::Mat packed = matrix.isContinuous() ? matrix : matrix.clone();
    return BytesOf(packed.rows) + BytesOf(packed.cols) + BytesOf(packed.type()) +
           std::string(packed.ptr<char>(), packed.total() * packed.elemSize());
}

void Compare(const std::string& operation, const Case& row, Way plain, Way library) {
    const std::string name = operation + "/" + row.name + "/" + row.input;
    benchmark::RegisterBenchmark(name.c_str(), [row, plain = std::move(plain), library = std::move(library)](
                                                   benchmark::State& state) { RunInTurns(state, row, plain, library); })
        ->UseManualTime()
        ->MinTime(kSecondsPerRow)
        ->Unit(benchmark::kMillisecond);
}

int Run(int argc, char** argv) {
    cv::setNumThreads(1);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace quarry::bench
