// What processors and updaters do alike with the records that hosts give them.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Quarry.Frame/Processor.h"
#include "Quarry.Frame/Updatable.h"
#include "support/Bytes.h"
#include "support/Framed.h"
#include "support/Slots.h"
#include "support/WrongFrames.h"

using namespace quarry::test;

namespace {

struct GainOptions {
    uint32_t Header;
    int16_t Gain;
    double Offset;
};

struct Sample {
    uint32_t Header;
    int64_t Value;
    int32_t* Buffer;
};

struct Measure {
    int32_t Status;
    double Value;
    char Letter;
};

using Script = std::function<Measure(Sample&)>;

}  // namespace

template <>
struct quarry::RecordFields<Measure> {
    static constexpr auto value = std::tuple{&Measure::Status, &Measure::Value, &Measure::Letter};
};

namespace {

/// A processor whose algorithm is the test's.
class ScriptedProcessor : public Processor<GainOptions, Sample, Measure> {
public:
    using Processor::Processor;
    Measure DoProcess(Sample sample) override {
        ++calls;
        return script(sample);
    }

    void Feed(Framed<Sample>* input, Framed<Measure>* result) {
        Process(input == nullptr ? nullptr : input->as<ProcessData>(),
                result == nullptr ? nullptr : result->as<ProcessResult>());
    }
    void Exchange(Framed<Sample>* input, Framed<Measure>* result) { Feed(input, result); }
    const GainOptions& Options() const { return options; }

    Script script = [](Sample&) { return Measure{0, 2.5, 'x'}; };
    int calls = 0;
};

/// An updater whose result is what the test makes of the last frame.
class ScriptedUpdater : public Updatable<GainOptions, Sample, Measure> {
public:
    using Updatable::Updatable;
    bool NeedInitialize(Sample /*sample*/) override {
        ++calls;
        return result == nullptr;
    }
    void DoInitialize(Sample /*sample*/) override { result = &last; }
    void DoUpdate(Sample sample) override { last = script(sample); }
    void AssignResultData() override { ++calls; }

    void Feed(Framed<Sample>* input, Framed<Measure>* /*result*/) {
        Update(input == nullptr ? nullptr : input->as<UpdateData>());
    }
    void Exchange(Framed<Sample>* input, Framed<Measure>* measure) {
        Feed(input, measure);
        calls = 0;  // what counts is whether the result is asked for
        GetResult(measure == nullptr ? nullptr : measure->as<UpdateResult>());
    }
    const GainOptions& Options() const { return options; }

    Script script = [](Sample&) { return Measure{0, 2.5, 'x'}; };
    int calls = 0;

private:
    Measure last{};
};

template <class Side>
class Exchange : public testing::Test {
protected:
    Framed<GainOptions> options = FramedOptions<GainOptions>();
    Side side{options.record()};
    Framed<Sample> input = FramedInput<Sample>(0x6D);
    Framed<Measure> result = FramedResult<Measure>(0xA7);
};
using Sides = testing::Types<ScriptedProcessor, ScriptedUpdater>;
TYPED_TEST_SUITE(Exchange, Sides, );

TYPED_TEST(Exchange, WritesTheFieldsThatTheAlgorithmGaveAndNoPadding) {
    this->side.script = [](Sample&) { return Measure{7, -1.25, 'q'}; };
    this->side.Exchange(&this->input, &this->result);
    EXPECT_EQ(this->result->Status, 7);
    EXPECT_EQ(this->result->Value, -1.25);
    EXPECT_EQ(this->result->Letter, 'q');
    const auto bytes = this->result.Bytes();
    for (const std::size_t padding : {4U, 5U, 6U, 7U, 17U, 18U, 19U, 20U, 21U, 22U, 23U}) {
        EXPECT_EQ(bytes[padding], 0xA7) << "byte " << padding;
    }
}

TYPED_TEST(Exchange, GivesTheAlgorithmACopyOfEveryByteOfTheInput) {
    const auto given = this->input.Bytes();
    auto seen = given;
    seen.fill(0);
    this->side.script = [&seen](Sample& sample) {
        std::memcpy(seen.data(), &sample, sizeof(sample));
        sample = {1, 2, nullptr};
        return Measure{};
    };
    this->side.Exchange(&this->input, &this->result);
    EXPECT_EQ(seen, given);
    EXPECT_EQ(this->input.Bytes(), given);
}

TYPED_TEST(Exchange, CallsTheAlgorithmOncePerInput) {
    int calls = 0;
    this->side.script = [&calls](Sample&) { return Measure{++calls, 0, 0}; };
    this->side.Exchange(&this->input, &this->result);
    this->side.Exchange(&this->input, &this->result);
    EXPECT_EQ(this->result->Status, 2);
}

TYPED_TEST(Exchange, PassesAnExceptionOnAndWorksAfterIt) {
    struct Failure {
        int code;
    };
    const auto before = this->result.Bytes();
    this->side.script = [](Sample&) -> Measure { throw Failure{815}; };
    try {
        this->side.Exchange(&this->input, &this->result);
        FAIL() << "nothing was thrown";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, 815);
    }
    EXPECT_EQ(this->result.Bytes(), before);
    this->side.script = [](Sample&) { return Measure{0, 8.0, 'a'}; };
    this->side.Exchange(&this->input, &this->result);
    EXPECT_EQ(this->result->Value, 8.0);
}

// ---- checks

TYPED_TEST(Exchange, CallsAndWritesNothingWhenTheInputsFrameIsWrong) {
    const auto before = this->result.Bytes();
    for (const WrongFrame& frame : WrongFrames(sizeof(Sample), QUARRY_INPUT_TAG)) {
        Apply(frame, this->input);
        EXPECT_THROW(this->side.Feed(&this->input, &this->result), MarshalingException) << frame;
        EXPECT_EQ(this->side.calls, 0) << frame;
        EXPECT_EQ(this->result.Bytes(), before) << frame;
    }
}

TYPED_TEST(Exchange, CallsAndWritesNothingWhenTheResultsFrameIsWrong) {
    const auto before = this->result.Bytes();
    for (const WrongFrame& frame : WrongFrames(sizeof(Measure), QUARRY_RESULT_TAG)) {
        Apply(frame, this->result);
        EXPECT_THROW(this->side.Exchange(&this->input, &this->result), MarshalingException) << frame;
        EXPECT_EQ(this->side.calls, 0) << frame;
        EXPECT_EQ(this->result.Bytes(), before) << frame;
    }
}

TYPED_TEST(Exchange, RefusesNullRecords) {
    EXPECT_THROW(this->side.Feed(nullptr, &this->result), std::invalid_argument);
    EXPECT_THROW(this->side.Exchange(&this->input, nullptr), std::invalid_argument);
    EXPECT_EQ(this->side.calls, 0);
}

/// Bytes<N> as options, input and result at once.
template <class Record>
class SameLengthProcessor : public Processor<Record, Record, Record> {
public:
    using Processor<Record, Record, Record>::Processor;
    Record DoProcess(Record input) override { return input; }
};
template <class Record>
class SameLengthUpdater : public Updatable<Record, Record, Record> {
public:
    using Updatable<Record, Record, Record>::Updatable;
    bool NeedInitialize(Record /*frame*/) override { return true; }
    void DoInitialize(Record /*frame*/) override { this->result = &last; }
    void DoUpdate(Record frame) override { last = frame; }

private:
    Record last{};
};

template <class Record>
void ExpectToTravel() {
    auto options = FramedOptions<Record>();
    auto input = FramedInput<Record>(0x3C);
    auto processed = FramedResult<Record>(0xC3);
    SameLengthProcessor<Record>(options.record())
        .Process(input.template as<ProcessData>(), processed.template as<ProcessResult>());
    EXPECT_EQ(processed.Bytes(), input.Bytes()) << sizeof(Record);
    auto updated = FramedResult<Record>(0xC3);
    SameLengthUpdater<Record> updater(options.record());
    updater.Update(input.template as<UpdateData>());
    updater.GetResult(updated.template as<UpdateResult>());
    EXPECT_EQ(updated.Bytes(), input.Bytes()) << sizeof(Record);
}

template <std::size_t... Index>
void ExpectEveryLengthToTravel(std::index_sequence<Index...> /*lengths*/) {
    (ExpectToTravel<Bytes<Index + 1>>(), ...);
}

TEST(ExchangedRecords, HaveAnyLengthFrom1To120) {
    ExpectEveryLengthToTravel(std::make_index_sequence<120>());
    auto options = FramedOptions<Bytes<121>>();
    EXPECT_THROW(SameLengthProcessor<Bytes<121>>{options.record()}, MarshalingException);
    EXPECT_THROW(SameLengthUpdater<Bytes<121>>{options.record()}, MarshalingException);
}

// ---- options

TYPED_TEST(Exchange, KeepsItsOptionsWhenTheHostFreesThem) {
    auto given = std::make_unique<Framed<GainOptions>>(QUARRY_OPTIONS_TAG);
    **given = {0xFEDCBA98U, -321, 6.75};
    const auto before = given->Bytes();
    const TypeParam other(given->record());
    EXPECT_EQ(given->Bytes(), before);
    **given = {0, 0, 0.0};
    given.reset();
    EXPECT_EQ(other.Options().Header, 0xFEDCBA98U);
    EXPECT_EQ(other.Options().Gain, -321);
    EXPECT_EQ(other.Options().Offset, 6.75);
}

TYPED_TEST(Exchange, IsNotBuiltFromNullOrFromWrongOptions) {
    EXPECT_THROW(TypeParam{nullptr}, std::invalid_argument);
    for (const WrongFrame& frame : WrongFrames(sizeof(GainOptions), QUARRY_OPTIONS_TAG)) {
        Apply(frame, this->options);
        EXPECT_THROW(TypeParam{this->options.record()}, MarshalingException) << frame;
    }
}

// ---- the object

TYPED_TEST(Exchange, EndsThroughItsDisposableBase) {
    struct Counted : TypeParam {
        Counted(GainOptions* source, std::string* heard) : TypeParam(source), notes(heard) {}
        ~Counted() override { *notes += "destructor "; }
        void Dispose() override { *notes += "Dispose "; }
        std::string* notes;
    };
    std::string notes;
    delete static_cast<Disposable*>(new Counted(this->options.record(), &notes));
    EXPECT_EQ(notes, "destructor ");
    auto* const disposable = static_cast<Disposable*>(new Counted(this->options.record(), &notes));
    CallSlot<void>(disposable, 0);
    CallSlot<void>(disposable, 2);  // slot 1 destroys, slot 2 frees as well
    EXPECT_EQ(notes, "destructor Dispose destructor ");
}

static_assert(!std::has_virtual_destructor_v<IProcessor> && !std::has_virtual_destructor_v<IUpdatable> &&
                  !std::has_virtual_destructor_v<Disposer<Measure>> &&
                  !std::has_virtual_destructor_v<Initializable<Sample>>,
              "the interfaces have no slot for a destructor");
static_assert(std::has_virtual_destructor_v<Disposable>);

}  // namespace
