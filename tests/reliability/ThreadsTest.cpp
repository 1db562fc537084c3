#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <thread>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/AllOperations.h"
#include "support/SampleInputs.h"

using namespace quarry::test;

namespace {

constexpr int kThreads = 8;
constexpr int kTurns = 6;

using Results = std::vector<Buffer>;

/// What all operations say, turn by turn, each with a handle of its own that lives throughout.
Results AllResults() {
    const auto operations = AllOperations();
    std::vector<void*> handles(operations.size());
    Results results;
    for (std::size_t i = 0; i < operations.size(); ++i) operations[i]->Create(&handles[i]);
    for (int turn = 0; turn < kTurns; ++turn) {
        for (std::size_t i = 0; i < operations.size(); ++i) {
            results.push_back(operations[i]->Run(handles[i], FrameOfTurn(turn)));
        }
    }
    for (void* const handle : handles) Dispose(handle);
    return results;
}

/// How many of the threads that run at once get what one gets alone.
int CountRight() {
    const Results alone = AllResults();
    std::vector<Results> results(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(results.size());
    for (Results& own : results) threads.emplace_back([&own] { own = AllResults(); });
    for (std::thread& thread : threads) thread.join();
    int right = 0;
    for (const Results& own : results) right += own == alone ? 1 : 0;
    return right;
}

TEST(Threads, OnHandlesOfTheirOwnGetWhatOneGetsAlone) {
    cv::setNumThreads(1);  // a host with a stream per thread
    EXPECT_EQ(CountRight(), kThreads);
    cv::setNumThreads(-1);
}

// The thread sanitizer does not see how OpenCV's threads wait for each other.
#ifndef __SANITIZE_THREAD__
TEST(Threads, ShareThoseOfOpenCV) {
    cv::setNumThreads(4);
    EXPECT_EQ(CountRight(), kThreads);
    cv::setNumThreads(-1);
}
#endif

}  // namespace
