#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/AllOperations.h"
#include "support/SampleInputs.h"

using namespace quarry::test;

namespace {

/// What an operation says does not depend on how many threads OpenCV has, nor on when it is asked.
class Determinism : public testing::TestWithParam<std::string> {
protected:
    void TearDown() override { cv::setNumThreads(-1); }

    std::vector<Buffer> Results(int threads) {
        cv::setNumThreads(threads);
        void* handle = nullptr;
        operation->Create(&handle);
        std::vector<Buffer> results(kTurns);
        int turn = 0;
        for (Buffer& result : results) result = operation->Run(handle, FrameOfTurn(turn++, FrameSize::Large));
        Dispose(handle);
        return results;
    }

    static constexpr int kTurns = 5;  // the last brings another size

    const std::unique_ptr<Operation> operation = OperationNamed(GetParam(), FrameSize::Large);
};

TEST_P(Determinism, TheSameBytesComeEveryTimeOfAnyNumberOfThreads) {
    const std::vector<Buffer> expected = Results(1);
    for (const int threads : {1, 2, 4, 8}) EXPECT_TRUE(Results(threads) == expected) << threads << " threads";
    if (operation->isUpdater) return;  // they learn from turn to turn
    EXPECT_EQ(std::count(expected.begin(), expected.end(), expected[0]), kTurns);
}

INSTANTIATE_TEST_SUITE_P(All, Determinism, testing::ValuesIn(OperationNames()),
                         [](const auto& test) { return test.param; });

}  // namespace
