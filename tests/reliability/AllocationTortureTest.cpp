#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "Quarry/Quarry.h"
#include "reliability/Shortage.h"
#include "support/AllOperations.h"
#include "support/Allocations.h"
#include "support/SampleInputs.h"

using namespace quarry::test;

namespace {

/// Each call of an operation with its first allocation failing, then with its second, until none is left to fail.
class AllocationTorture : public testing::TestWithParam<std::tuple<std::string, Memory>> {
protected:
    void SetUp() override {
        // What OpenCV keeps for good is built now, for success and for failure.
        for (int turn = 0; turn < kTurns; ++turn) EndAfter(turn);
        EXPECT_THROW(cv::Mat(-1, -1, CV_8UC1), cv::Exception);
    }

    /// A handle that has seen the frames before a turn.
    void* CreateFor(int turn) {
        void* handle = nullptr;
        operation->Create(&handle);
        for (int i = 0; i < turn; ++i) operation->Run(handle, FrameOfTurn(i));
        return handle;
    }

    /// What a life without failures says at a turn.
    Buffer EndAfter(int turn) {
        void* const handle = CreateFor(turn);
        Buffer result = operation->Run(handle, FrameOfTurn(turn));
        Dispose(handle);
        return result;
    }

    static constexpr int kTurns = 6;  // the fifth brings another size

    const std::unique_ptr<Operation> operation = OperationNamed(std::get<0>(GetParam()));
    const Memory memory = std::get<1>(GetParam());
};

TEST_P(AllocationTorture, OfAFactoryLeavesTheHandleUntouched) {
    const std::size_t failures = CountFailures([&](std::size_t served) {
        const std::size_t before = LiveBlocks();
        int mark = 0;
        void* handle = &mark;
        const bool failed = Fails(memory, served, [&] { operation->Create(&handle); });
        EXPECT_EQ(handle == &mark, failed);
        if (!failed) Dispose(handle);
        EXPECT_EQ(LiveBlocks(), before);
        return failed;
    });
    if (memory == Memory::OfTheLibrary) {
        EXPECT_GE(failures, 2U) << "a handle and its target";
    }
}

TEST_P(AllocationTorture, OfAResultLeavesTheRecordUntouched) {
    for (int turn = 0; turn < kTurns; ++turn) {
        SCOPED_TRACE(testing::Message() << "turn " << turn);
        const Buffer expected = EndAfter(turn);
        void* const handle = CreateFor(turn);
        operation->Feed(handle, FrameOfTurn(turn));
        operation->Fill(handle);  // what grows once and stays has grown now
        operation->GiveBack(handle);
        CountFailures([&](std::size_t served) {
            const Buffer untouched = operation->Record().Bytes();
            const std::size_t before = LiveBlocks();
            const bool failed = Fails(memory, served, [&] { operation->Fill(handle); });
            if (failed) {
                EXPECT_EQ(LiveBlocks(), before);
                EXPECT_EQ(operation->Record().Bytes(), untouched);
                operation->Fill(handle);
            }
            EXPECT_EQ(operation->Result(), expected);
            operation->GiveBack(handle);
            EXPECT_EQ(LiveBlocks(), before);
            return failed;
        });
        Dispose(handle);
        if (!operation->isUpdater) return;
    }
}

TEST_P(AllocationTorture, LeavesTheEndsAlone) {
    void* const handle = CreateFor(1);
    operation->Feed(handle, FrameOfTurn(1));
    operation->Fill(handle);
    EXPECT_FALSE(Fails(memory, 0, [&] { operation->GiveBack(handle); }));
    EXPECT_FALSE(Fails(memory, 0, [&] { Dispose(handle); }));
}

class UpdateTorture : public AllocationTorture {};

TEST_P(UpdateTorture, IsMadeGoodByTheSameFrameAgain) {
    for (int turn = 0; turn < kTurns; ++turn) {
        SCOPED_TRACE(testing::Message() << "turn " << turn);
        const Buffer expected = EndAfter(turn);
        const Buffer next = EndAfter(turn + 1);
        CountFailures([&](std::size_t served) {
            const std::size_t before = LiveBlocks();
            void* const handle = CreateFor(turn);
            const bool failed = Fails(memory, served, [&] { operation->Feed(handle, FrameOfTurn(turn)); });
            if (failed) {
                operation->ResultIfAny(handle);
                operation->Feed(handle, FrameOfTurn(turn));
            }
            operation->Fill(handle);
            EXPECT_EQ(operation->Result(), expected);
            EXPECT_EQ(operation->Run(handle, FrameOfTurn(turn + 1)), next);
            Dispose(handle);
            EXPECT_EQ(LiveBlocks(), before);
            return failed;
        });
    }
}

/// Of updaters that wait for a second frame: a tracker may be trained on the first one already.
class FirstFrameTorture : public AllocationTorture {};

TEST_P(FirstFrameTorture, MakesItNone) {
    void* const fresh = CreateFor(0);
    const Buffer expected = operation->Run(fresh, FrameOfTurn(2));
    const Buffer next = operation->Run(fresh, FrameOfTurn(3));
    Dispose(fresh);
    CountFailures([&](std::size_t served) {
        void* const handle = CreateFor(0);
        const bool failed = Fails(memory, served, [&] { operation->Feed(handle, FrameOfTurn(0)); });
        if (failed) {
            EXPECT_EQ(operation->Run(handle, FrameOfTurn(2)), expected);
            EXPECT_EQ(operation->Run(handle, FrameOfTurn(3)), next);
        }
        Dispose(handle);
        return failed;
    });
}

std::string NameOf(const testing::TestParamInfo<std::tuple<std::string, Memory>>& test) {
    const auto& [operation, memory] = test.param;
    return operation + (memory == Memory::OfTheLibrary ? "_OwnMemory" : "_Matrices");
}
const auto kMemories = testing::Values(Memory::OfTheLibrary, Memory::OfMatrices);
INSTANTIATE_TEST_SUITE_P(All, AllocationTorture, testing::Combine(testing::ValuesIn(OperationNames()), kMemories),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(All, UpdateTorture, testing::Combine(testing::ValuesIn(UpdaterNames()), kMemories), NameOf);
INSTANTIATE_TEST_SUITE_P(All, FirstFrameTorture,
                         testing::Combine(testing::Values("BackgroundModel", "DenseOpticalFlow"), kMemories), NameOf);

}  // namespace
