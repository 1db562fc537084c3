// What holds for every operation of the table, through the shared object that hosts load.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/AllOperations.h"
#include "support/Allocations.h"
#include "support/SampleInputs.h"
#include "support/WrongFrames.h"

namespace {

using namespace quarry::test;

constexpr int kTurns = 6;  // the fifth brings another size

class EveryOperation : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        // What OpenCV keeps for good is built now, for success and for failure.
        expected = ResultsOf(kTurns);
        EXPECT_THROW(cv::Mat(-1, -1, CV_8UC1), cv::Exception);
        operation->Create(&handle);
    }
    void TearDown() override { Dispose(handle); }

    /// What a fresh handle says of a stream.
    std::vector<Buffer> ResultsOf(int turns) {
        void* fresh = nullptr;
        operation->Create(&fresh);
        std::vector<Buffer> results = Continue(fresh, 0, turns);
        Dispose(fresh);
        return results;
    }
    std::vector<Buffer> Continue(void* from, int first, int end) {
        std::vector<Buffer> results;
        for (int turn = first; turn < end; ++turn) results.push_back(operation->Run(from, FrameOfTurn(turn)));
        return results;
    }

    /// Gives an input in: to `Update`, or to `Process` with the result record.
    void GiveIn() {
        if (operation->isUpdater) {
            Update(handle, operation->Input().as<UpdateData>());
        } else {
            Process(handle, operation->Input().as<ProcessData>(), operation->Record().as<ProcessResult>());
        }
    }
    /// Hands a result over: for an updater to fill, for a processor to take back.
    void HandOver(const AnyRecord& record) {
        if (operation->isUpdater) {
            GetUpdateResult(handle, record.as<UpdateResult>());
        } else {
            DisposeResult(handle, record.as<ProcessResult>());
        }
    }

    /// Calls with every wrong frame around a record. Each is refused with the one message, and changes nothing.
    template <class Call>
    void ExpectFramesAreChecked(const AnyRecord& record, Call call) {
        const Buffer untouched = operation->Record().Bytes();
        for (const WrongFrame& wrong : WrongFrames(static_cast<int32_t>(record.size), record.tag)) {
            SCOPED_TRACE(wrong);
            Apply(wrong, record);
            const std::size_t before = LiveBlocks();
            try {
                call();
                ADD_FAILURE() << "nothing was thrown";
            } catch (const MarshalingException& error) {
                EXPECT_STREQ(error.what(), "Analysis System data marshaling error");
            }
            EXPECT_EQ(LiveBlocks(), before);
            EXPECT_EQ(operation->Record().Bytes(), untouched);
        }
        record.SetLength(static_cast<int32_t>(record.size));
        record.SetTag(record.tag);
    }

    /// A call with null is refused, and changes nothing.
    template <class Call>
    void ExpectNullIsRefused(Call call) {
        const Buffer untouched = operation->Record().Bytes();
        EXPECT_THROW(call(), std::invalid_argument);
        const std::size_t before = LiveBlocks();
        EXPECT_THROW(call(), std::invalid_argument);
        EXPECT_EQ(LiveBlocks(), before);
        EXPECT_EQ(operation->Record().Bytes(), untouched);
    }

    const std::unique_ptr<Operation> operation = OperationNamed(GetParam());
    std::vector<Buffer> expected;
    void* handle = nullptr;
};

std::string NameOf(const testing::TestParamInfo<std::string>& test) {
    return test.param;
}
INSTANTIATE_TEST_SUITE_P(All, EveryOperation, testing::ValuesIn(OperationNames()), NameOf);

// ---- life

TEST_P(EveryOperation, LivesFromItsFactoryToDisposeAndKeepsNothing) {
    for (const bool used : {false, true}) {
        const std::size_t before = LiveBlocks();
        int mark = 0;
        void* other = &mark;
        operation->Create(&other);
        ASSERT_NE(other, &mark);
        ASSERT_NE(other, nullptr);
        if (used) Continue(other, 0, kTurns);
        Dispose(other);
        EXPECT_EQ(LiveBlocks(), before);
    }
}

TEST_P(EveryOperation, ReadsItsOptionsOnlyInTheFactory) {
    operation->Options().Fill(0xFF);
    operation->Options().SetTag(0);
    EXPECT_EQ(Continue(handle, 0, kTurns), expected);
}

TEST_P(EveryOperation, SharesNothingWithAnotherHandle) {
    void* other = nullptr;
    operation->Create(&other);
    EXPECT_NE(handle, other);
    std::vector<Buffer> results;
    for (int turn = 0; turn < kTurns; ++turn) {
        results.push_back(operation->Run(handle, FrameOfTurn(turn)));
        operation->Run(other, FrameOfTurn(turn / 2));
    }
    EXPECT_EQ(results, expected);
    Dispose(other);
    operation->Run(handle, FrameOfTurn(kTurns));
}

// ---- records

TEST_P(EveryOperation, ReadsNothingThatIsNotMeantForIt) {
    for (const int fill : {0x00, 0x01, 0xFF}) {
        SCOPED_TRACE(testing::Message() << "filled with " << fill);
        operation->FillUnread(static_cast<uint8_t>(fill));
        std::memset(operation->Options().bytes - 8, fill, 4);  // what stands before the length word
        EXPECT_EQ(ResultsOf(kTurns), expected);
    }
}

TEST_P(EveryOperation, LeavesOptionsInputAndWhatTheyShowAsTheyAre) {
    operation->FillUnread(0x3A);
    operation->Feed(handle, FrameOfTurn(0));
    const Buffer samples = Samples(FrameSize::Small).Bytes();
    const Buffer options = operation->Options().Bytes();
    const Buffer input = operation->Input().Bytes();
    operation->Run(handle, FrameOfTurn(0));
    void* other = nullptr;
    operation->Create(&other);
    operation->Run(other, FrameOfTurn(0));
    Dispose(other);
    EXPECT_EQ(operation->Options().Bytes(), options);
    EXPECT_EQ(operation->Input().Bytes(), input);
    EXPECT_EQ(Samples(FrameSize::Small).Bytes(), samples);
}

TEST_P(EveryOperation, WritesTheFieldsOfItsResultAndNothingElse) {
    const std::vector<bool> unwritten = operation->Unwritten();
    operation->Feed(handle, FrameOfTurn(0));
    Buffer written[2];
    const uint8_t fills[] = {0xA5, 0x5A};
    for (const int i : {0, 1}) {
        operation->Record().Fill(fills[i]);
        operation->Fill(handle);
        written[i] = operation->Record().Bytes();
        operation->GiveBack(handle);
    }
    for (std::size_t i = 0; i < unwritten.size(); ++i) {
        EXPECT_EQ(written[0][i] == fills[0] && written[1][i] == fills[1], unwritten[i]) << "byte " << i;
    }
    for (std::size_t i = 0; i < 4; ++i) {
        if (!unwritten[0]) {
            EXPECT_EQ(written[0][i], 0) << "byte " << i << " of the status";
        }
    }
}

// ---- frames around records

TEST_P(EveryOperation, ChecksTheFrameOfItsOptions) {
    int mark = 0;
    void* untouched = &mark;
    ExpectFramesAreChecked(operation->Options(), [&] { operation->Create(&untouched); });
    EXPECT_EQ(untouched, &mark);
}

TEST_P(EveryOperation, ChecksTheFrameOfItsInput) {
    Continue(handle, 0, 2);
    ExpectFramesAreChecked(operation->Input(), [&] { GiveIn(); });
    EXPECT_EQ(Continue(handle, 2, kTurns), std::vector<Buffer>(expected.begin() + 2, expected.end()));
}

TEST_P(EveryOperation, ChecksTheFrameOfItsResult) {
    Continue(handle, 0, 2);
    ExpectFramesAreChecked(operation->Record(), [&] { HandOver(operation->Record()); });
    ExpectFramesAreChecked(operation->Record(), [&] { operation->Fill(handle); });
    EXPECT_EQ(Continue(handle, 2, kTurns), std::vector<Buffer>(expected.begin() + 2, expected.end()));
}

// ---- what is null, or of the other kind

TEST_P(EveryOperation, RefusesNull) {
    int mark = 0;
    void* untouched = &mark;
    ExpectNullIsRefused([&] { operation->CallFactory(&untouched, nullptr); });
    EXPECT_EQ(untouched, &mark);
    ExpectNullIsRefused([&] { operation->CallFactory(nullptr, operation->Options().bytes); });
    ExpectNullIsRefused([&] { HandOver({0, 0, nullptr}); });
    if (operation->isUpdater) {
        ExpectNullIsRefused([&] { Update(handle, nullptr); });
    } else {
        ExpectNullIsRefused([&] { Process(handle, nullptr, operation->Record().as<ProcessResult>()); });
        ExpectNullIsRefused([&] { Process(handle, operation->Input().as<ProcessData>(), nullptr); });
    }
}

TEST_P(EveryOperation, RefusesTheCallsOfTheOtherKindBeforeItLooksAtRecords) {
    operation->Input().SetTag(0);
    operation->Record().SetTag(0);
    if (operation->isUpdater) {
        ExpectNullIsRefused(
            [&] { Process(handle, operation->Input().as<ProcessData>(), operation->Record().as<ProcessResult>()); });
        ExpectNullIsRefused([&] { DisposeResult(handle, operation->Record().as<ProcessResult>()); });
    } else {
        ExpectNullIsRefused([&] { Update(handle, operation->Input().as<UpdateData>()); });
        ExpectNullIsRefused([&] { GetUpdateResult(handle, operation->Record().as<UpdateResult>()); });
    }
}

// ---- processors

class EveryProcessor : public EveryOperation {};
INSTANTIATE_TEST_SUITE_P(All, EveryProcessor, testing::ValuesIn(ProcessorNames()), NameOf);

TEST_P(EveryProcessor, WorksAfterAnInputThatItRefuses) {
    const Buffer untouched = operation->Record().Bytes();
    operation->SpoilInput();
    for (int call = 0; call < 2; ++call) {  // what OpenCV keeps of its first failure is kept once
        const std::size_t before = LiveBlocks();
        EXPECT_THROW(operation->Fill(handle), std::exception);
        EXPECT_TRUE(call == 0 || LiveBlocks() == before);
        EXPECT_EQ(operation->Record().Bytes(), untouched);
    }
    operation->FillUnread(0);
    EXPECT_EQ(Continue(handle, 0, kTurns), expected);
}

/// Where a record holds addresses of blocks, by what becomes of them when the result is given back.
std::vector<std::size_t> AddressesIn(const Buffer& filled, const Buffer& givenBack) {
    std::vector<std::size_t> addresses;
    for (std::size_t at = 0; at + 8 <= filled.size(); at += 8) {
        uint64_t after = 0;
        std::memcpy(&after, &givenBack[at], sizeof(after));
        if (std::memcmp(&filled[at], &givenBack[at], sizeof(after)) == 0) continue;
        EXPECT_EQ(after, 0U) << "the word at " << at;
        addresses.push_back(at);
    }
    return addresses;
}

TEST_P(EveryProcessor, ReleasesAResultThatIsGivenBackAndForgetsIt) {
    operation->Run(handle, {});  // detectors keep a pyramid
    Buffer filled = operation->Record().Bytes();
    const AnyRecord record = operation->Record();
    const std::size_t before = LiveBlocks();
    operation->Fill(handle);
    const bool holdsBlocks = LiveBlocks() > before;
    std::copy_n(record.bytes, record.size, filled.begin());
    operation->GiveBack(handle);
    EXPECT_EQ(LiveBlocks(), before);
    const Buffer givenBack = record.Bytes();
    const std::vector<std::size_t> addresses = AddressesIn(filled, givenBack);
    EXPECT_EQ(addresses.size(), holdsBlocks ? 1U : 0U);

    operation->GiveBack(handle);
    EXPECT_EQ(record.Bytes(), givenBack) << "twice";
    record.Fill(0x5A);
    for (const std::size_t at : addresses) std::memset(record.bytes + at, 0, 8);
    const Buffer empty = record.Bytes();
    operation->GiveBack(handle);
    EXPECT_EQ(record.Bytes(), empty) << "without blocks";
}

// ---- updaters

class EveryUpdater : public EveryOperation {};
INSTANTIATE_TEST_SUITE_P(All, EveryUpdater, testing::ValuesIn(UpdaterNames()), NameOf);

TEST_P(EveryUpdater, HasNoResultBeforeItsFirstFrame) {
    const Buffer untouched = operation->Record().Bytes();
    EXPECT_THROW(operation->Fill(handle), std::logic_error);
    EXPECT_EQ(operation->Record().Bytes(), untouched);
    ExpectFramesAreChecked(operation->Record(), [&] { operation->Fill(handle); });
    EXPECT_EQ(Continue(handle, 0, kTurns), expected);
}

TEST_P(EveryUpdater, HasNoResultAfterAFirstFrameInAWrongRecord) {
    operation->Input().SetTag(QUARRY_RESULT_TAG);
    EXPECT_THROW(GiveIn(), MarshalingException);
    EXPECT_THROW(operation->Fill(handle), std::logic_error);
}

TEST_P(EveryUpdater, ShowsTheSameBuffersUntilItsNextFrame) {
    operation->Run(handle, FrameOfTurn(0));
    const Buffer first = operation->Record().Bytes();
    operation->Fill(handle);
    EXPECT_EQ(operation->Record().Bytes(), first);
}

}  // namespace
