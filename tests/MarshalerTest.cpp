#include <cxxabi.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Quarry.Frame/DataChecker.h"
#include "Quarry.Frame/Marshaler.h"
#include "Quarry/Quarry.h"
#include "support/Bytes.h"
#include "support/Framed.h"
#include "support/Slots.h"
#include "support/WrongFrames.h"

namespace {

using quarry::CheckRecord;
using quarry::test::Apply;
using quarry::test::Bytes;
using quarry::test::Framed;
using quarry::test::WrongFrame;
using quarry::test::WrongFrames;

constexpr uint32_t kTags[] = {QUARRY_OPTIONS_TAG, QUARRY_INPUT_TAG, QUARRY_RESULT_TAG};

/// Calls `test` with a record type of every length from 1 to 120.
template <class Test, std::size_t... Index>
void ForEveryLength(Test test, std::index_sequence<Index...> /*lengths*/) {
    (test(Bytes<Index + 1>{}), ...);
}
template <class Test>
void ForEveryLength(Test test) {
    ForEveryLength(test, std::make_index_sequence<120>());
}

/// A record of its own type, so that this file can stand in for its length check.
struct WatchedRecord {
    int32_t Value;
};
std::vector<int> watchedSizes;

/// Bytes that end where memory ends: the page after them cannot be read.
class EndOfMemory {
public:
    EndOfMemory()
        : page(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          start(static_cast<unsigned char*>(
              mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        if (start == MAP_FAILED || mprotect(start + page, page, PROT_NONE) != 0) std::abort();
    }
    EndOfMemory(const EndOfMemory&) = delete;
    EndOfMemory& operator=(const EndOfMemory&) = delete;
    ~EndOfMemory() { munmap(start, 2 * page); }

    /// A record of `length` bytes that nothing follows, not even a tag.
    unsigned char* Untagged(std::size_t length, int32_t lengthWord) {
        unsigned char* const record = start + page - length;
        std::memcpy(record - sizeof(lengthWord), &lengthWord, sizeof(lengthWord));
        return record;
    }

private:
    std::size_t page;
    unsigned char* start;
};

}  // namespace

template <>
class DataChecker<WatchedRecord> {
public:
    static void Check(WatchedRecord* /*data*/, int size) { watchedSizes.push_back(size); }
};

namespace {

TEST(Marshaler, ReadsTheLengthFromTheFourBytesBeforeTheRecord) {
    const std::array<unsigned char, 16> memory{0xAA, 0xAA, 0xAA, 0xAA, 0x28, 0x03, 0x02, 0x01,
                                               0xBB, 0xBB, 0xBB, 0xBB, 0xBB, 0xBB, 0xBB, 0xBB};
    EXPECT_EQ(Marshaler::GetMarshalDataSize(memory.data() + 8), 0x01020328);
}

TEST(Marshaler, ReadsANegativeLength) {
    const std::array<unsigned char, 8> memory{0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0};
    EXPECT_EQ(Marshaler::GetMarshalDataSize(memory.data() + 4), -2);
}

TEST(Marshaler, ReadsTheTagFromTheFourBytesAfterTheRecord) {
    const std::array<unsigned char, 12> memory{1, 2, 3, 4, 5, 6, 7, 8, 0xF0, 0xF0, 0xF0, 0x10};
    EXPECT_EQ(Marshaler::GetMarshalDataType(memory.data(), 8), 0x10F0F0F0);
}

TEST(Marshaler, TakesTheSizeOfATagsRecordAsSigned) {
    const std::array<unsigned char, 12> memory{9, 0, 0, 0, 8, 0, 0, 0, 7, 0, 0, 0};
    EXPECT_EQ(Marshaler::GetMarshalDataType(memory.data() + 8, -4), 8);
}

TEST(Marshaler, AcceptsExactlyTheLengthsFrom1To120) {
    for (int size = -70000; size <= 70000; ++size) {
        const bool correct = size > 0 && size < 121;
        ASSERT_EQ(Marshaler::IsSizeCorrect(size), correct) << size;
    }
}

TEST(Marshaler, RejectsTheExtremeLengths) {
    EXPECT_FALSE(Marshaler::IsSizeCorrect(std::numeric_limits<int>::min()));
    EXPECT_FALSE(Marshaler::IsSizeCorrect(std::numeric_limits<int>::max()));
}

TEST(Marshaler, HoldsNoState) {
    EXPECT_TRUE(std::is_empty_v<Marshaler>);
}

TEST(MarshalingException, SaysThatMarshalingFailed) {
    EXPECT_STREQ(MarshalingException().what(), "Analysis System data marshaling error");
}

TEST(MarshalingException, HoldsNothingButItsTable) {
    EXPECT_EQ(sizeof(MarshalingException), sizeof(void*));
}

TEST(MarshalingException, HasNoBase) {
    EXPECT_EQ(typeid(typeid(MarshalingException)), typeid(abi::__class_type_info));
}

TEST(MarshalingException, IsNoStandardException) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, MarshalingException>));
}

TEST(MarshalingException, HasWhatInItsFirstSlot) {
    MarshalingException exception;
    EXPECT_STREQ(quarry::test::CallSlot<const char*>(&exception, 0), "Analysis System data marshaling error");
}

TEST(DataChecker, AcceptsEveryLengthThatARecordMayHave) {
    Framed<VoLOutputData> record(QUARRY_RESULT_TAG);
    for (int size = 1; size <= 120; ++size) {
        ASSERT_NO_THROW(DataChecker<VoLOutputData>::Check(record.record(), size)) << size;
    }
}

TEST(DataChecker, ThrowsForEveryLengthThatNoRecordHas) {
    Framed<VoLOutputData> record(QUARRY_RESULT_TAG);
    for (const int size :
         {0, -1, -8, 121, 122, 1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        ASSERT_THROW(DataChecker<VoLOutputData>::Check(record.record(), size), MarshalingException) << size;
    }
}

TEST(DataChecker, DoesNotReadTheRecord) {
    EXPECT_NO_THROW(DataChecker<VoLOutputData>::Check(nullptr, 8));
}

TEST(RecordCheck, AcceptsARightFrameAroundARecordOfEveryLength) {
    ForEveryLength([](auto type) {
        for (const uint32_t tag : kTags) {
            Framed<decltype(type)> record(tag, 0x77);
            EXPECT_NO_THROW(CheckRecord(record.record(), static_cast<int32_t>(tag), "any")) << sizeof(type);
        }
    });
}

TEST(RecordCheck, ThrowsForEveryFlawAroundARecordOfEveryLength) {
    ForEveryLength([](auto type) {
        for (const uint32_t tag : kTags) {
            for (const WrongFrame& frame : WrongFrames(sizeof(type), tag)) {
                Framed<decltype(type)> record(tag, 0x77);
                Apply(frame, record);
                EXPECT_THROW(CheckRecord(record.record(), static_cast<int32_t>(tag), "any"), MarshalingException)
                    << sizeof(type) << " bytes, tag " << tag << ", " << frame;
            }
        }
    });
}

TEST(RecordCheck, RejectsARecordThatIsLongerThanARecordMayBe) {
    Framed<Bytes<121>> record(QUARRY_INPUT_TAG);
    EXPECT_THROW(CheckRecord(record.record(), QUARRY_INPUT_TAG, "any"), MarshalingException);
}

TEST(RecordCheck, LeavesTheRecordAndItsFrameAsTheyAre) {
    Framed<Bytes<16>> record(QUARRY_INPUT_TAG, 0x5A);
    const auto before = record.Bytes();
    CheckRecord(record.record(), QUARRY_INPUT_TAG, "any");
    EXPECT_EQ(record.Bytes(), before);
    EXPECT_EQ(Marshaler::GetMarshalDataSize(record.record()), 16);
    EXPECT_EQ(Marshaler::GetMarshalDataType(record.record(), 16), QUARRY_INPUT_TAG);
}

TEST(RecordCheck, PassesTheLengthWordThroughTheRangeCheckOfTheRecordsType) {
    Framed<WatchedRecord> record(QUARRY_RESULT_TAG);
    watchedSizes.clear();
    CheckRecord(record.record(), QUARRY_RESULT_TAG, "result");
    EXPECT_EQ(watchedSizes, std::vector<int>{4});
}

TEST(RecordCheck, ChecksTheRangeBeforeTheExactLength) {
    Framed<WatchedRecord> record(QUARRY_RESULT_TAG);
    record.SetLength(-7);
    watchedSizes.clear();
    EXPECT_THROW(CheckRecord(record.record(), QUARRY_RESULT_TAG, "result"), MarshalingException);
    EXPECT_EQ(watchedSizes, std::vector<int>{-7});
}

TEST(RecordCheck, DoesNotLookForATagWhenTheLengthIsOutOfRange) {
    EndOfMemory memory;
    auto* const record = reinterpret_cast<VoLInputData*>(memory.Untagged(40, 121));
    EXPECT_THROW(CheckRecord(record, QUARRY_INPUT_TAG, "input"), MarshalingException);
}

TEST(RecordCheck, DoesNotLookForATagWhenTheLengthIsThatOfAnotherRecord) {
    EndOfMemory memory;
    auto* const record = reinterpret_cast<VoLInputData*>(memory.Untagged(8, 8));
    EXPECT_THROW(CheckRecord(record, QUARRY_INPUT_TAG, "input"), MarshalingException);
}

TEST(RecordCheck, ThrowsInvalidArgumentForNull) {
    EXPECT_THROW(CheckRecord<VoLInputData>(nullptr, QUARRY_INPUT_TAG, "input"), std::invalid_argument);
}

TEST(RecordCheck, NamesTheRoleOfARecordThatIsNull) {
    try {
        CheckRecord<VoLInputData>(nullptr, QUARRY_INPUT_TAG, "input");
        FAIL() << "nothing was thrown";
    } catch (const std::invalid_argument& error) {
        EXPECT_NE(std::string(error.what()).find("input"), std::string::npos) << error.what();
    }
}

}  // namespace
