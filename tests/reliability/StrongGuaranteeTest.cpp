#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/AllOperations.h"
#include "support/SampleInputs.h"

using namespace quarry::test;

namespace {

/// A frame that no updater can take in.
struct BadFrame {
    const char* flaw;
    int width;
    int height;
    bool pixels;
};
constexpr BadFrame kOfTheSameSize = {"no pixels", 64, 48, false};
constexpr BadFrame kOfAnotherSize[] = {{"no pixels and another size", 80, 56, false},
                                       {"empty", 0, 0, true},
                                       {"no rows", 64, 0, true},
                                       {"a negative width", -64, 48, true}};

/// What an updater that meets a frame it cannot take in makes of the next ones.
class StrongGuarantee : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { operation->Create(&handle); }
    void TearDown() override { Dispose(handle); }

    void Feed(const BadFrame& bad) {
        Image frame = FrameOfTurn(kBadTurn);
        frame.width = bad.width;
        frame.height = bad.height;
        if (!bad.pixels) frame.data = nullptr;
        try {
            operation->Feed(handle, frame);
        } catch (const std::exception&) {  // the flow takes a frame without pixels for a pause
        }
    }

    std::vector<Buffer> Run(int from, int to) {
        std::vector<Buffer> results;
        for (int turn = from; turn < to; ++turn) results.push_back(operation->Run(handle, FrameOfTurn(turn)));
        return results;
    }
    void BeginAnew() {
        Dispose(handle);
        operation->Create(&handle);
    }

    static constexpr int kBadTurn = 2;
    static constexpr int kTurns = 6;

    const std::unique_ptr<Operation> operation = OperationNamed(GetParam());
    void* handle = nullptr;
};

TEST_P(StrongGuarantee, ABadFrameOfTheSameSizeChangesNothing) {
    Run(0, kBadTurn);
    const Buffer shown = operation->ResultIfAny(handle);
    const std::vector<Buffer> expected = Run(kBadTurn, kTurns);
    BeginAnew();
    Run(0, kBadTurn);
    Feed(kOfTheSameSize);
    EXPECT_EQ(operation->ResultIfAny(handle), shown);
    EXPECT_EQ(Run(kBadTurn, kTurns), expected);
}

TEST_P(StrongGuarantee, ABadFrameOfAnotherSizeChangesNothingOrEverything) {
    const std::vector<Buffer> all = Run(0, kTurns);
    const std::vector<Buffer> continued(all.begin() + kBadTurn, all.end());
    BeginAnew();
    const std::vector<Buffer> anew = Run(kBadTurn, kTurns);
    for (const BadFrame& bad : kOfAnotherSize) {
        SCOPED_TRACE(bad.flaw);
        BeginAnew();
        Run(0, kBadTurn);
        Feed(bad);
        operation->ResultIfAny(handle);  // whatever it is, it can be read
        const std::vector<Buffer> after = Run(kBadTurn, kTurns);
        EXPECT_TRUE(after == continued || after == anew);
    }
}

TEST_P(StrongGuarantee, ABadFirstFrameChangesNothing) {
    const std::vector<Buffer> expected = Run(0, kTurns);
    for (const BadFrame& bad : kOfAnotherSize) {
        SCOPED_TRACE(bad.flaw);
        BeginAnew();
        Feed(bad);
        operation->ResultIfAny(handle);
        EXPECT_EQ(Run(0, kTurns), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Updaters, StrongGuarantee, testing::ValuesIn(UpdaterNames()),
                         [](const auto& test) { return test.param; });

}  // namespace
