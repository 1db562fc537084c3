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

#include "Quarry.Frame/BinaryProcessor.h"
#include "Quarry.Frame/ClassificationProcessor.h"
#include "Quarry.Frame/ClustererBase.h"
#include "Quarry.Frame/ContourIntersectionProcessor.h"
#include "Quarry.Frame/ContourMaskProcessor.h"
#include "Quarry.Frame/FilterBase.h"
#include "Quarry.Frame/Processor.h"
#include "Quarry.OpenCV/KMeanColorExtractor.h"
#include "Quarry.OpenCV/OpticalFlowLineProcessor.h"
#include "Quarry.OpenCV/RectExtractor.h"
#include "Quarry.OpenCV/VarianceOfLaplacian.h"
#include "support/Bytes.h"
#include "support/Framed.h"
#include "support/Slots.h"
#include "support/WrongFrames.h"

using quarry::test::Apply;
using quarry::test::Bytes;
using quarry::test::CallSlot;
using quarry::test::Framed;
using quarry::test::FramedInput;
using quarry::test::FramedOptions;
using quarry::test::FramedResult;
using quarry::test::WrongFrame;
using quarry::test::WrongFrames;

namespace {

using Log = std::vector<std::string>;

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

/// A processor whose algorithm is the test's, and which notes what was called.
class Scripted : public Processor<GainOptions, Sample, Measure> {
public:
    using Processor::Processor;

    Measure DoProcess(Sample sample) override {
        log.emplace_back("DoProcess");
        return script(sample);
    }
    void DoDisposeData(Measure* measure) override {
        log.emplace_back("DoDisposeData");
        disposed.push_back(measure);
    }

    std::function<Measure(Sample&)> script = [](Sample&) { return Measure{0, 2.5, 'x'}; };
    Log log;
    std::vector<Measure*> disposed;

    const GainOptions& Options() const { return options; }
};

/// A processor that overrides nothing.
class Default : public Processor<GainOptions, Sample, Measure> {
public:
    using Processor::Processor;
};

std::unique_ptr<Scripted> MakeScripted() {
    auto options = FramedOptions<GainOptions>();
    return std::make_unique<Scripted>(options.record());
}

/// Records whose length checks this file watches.
struct WatchedSample {
    int32_t Header;
};
struct WatchedMeasure {
    int32_t Status;
};
Log watched;

class Watched : public Processor<GainOptions, WatchedSample, WatchedMeasure> {
public:
    using Processor::Processor;
    WatchedMeasure DoProcess(WatchedSample /*sample*/) override {
        watched.emplace_back("DoProcess");
        return {};
    }
};

}  // namespace

template <>
struct quarry::RecordFields<Measure> {
    static constexpr auto value = std::tuple{&Measure::Status, &Measure::Value, &Measure::Letter};
};
template <>
struct quarry::RecordFields<WatchedMeasure> {
    static constexpr auto value = std::tuple{&WatchedMeasure::Status};
};
template <>
class DataChecker<WatchedSample> {
public:
    static void Check(WatchedSample* /*data*/, int size) { watched.push_back("input " + std::to_string(size)); }
};
template <>
class DataChecker<WatchedMeasure> {
public:
    static void Check(WatchedMeasure* /*data*/, int size) { watched.push_back("result " + std::to_string(size)); }
};

namespace {

// ---- Process

TEST(Processor, GivesAnAllZeroRecordByDefault) {
    auto options = FramedOptions<GainOptions>();
    Default processor(options.record());
    const Measure measure = processor.DoProcess(Sample{});
    EXPECT_EQ(measure.Status, 0);
    EXPECT_EQ(measure.Value, 0.0);
    EXPECT_EQ(measure.Letter, 0);
}

TEST(Processor, WritesTheDefaultRecordOverWhatTheHostHad) {
    auto options = FramedOptions<GainOptions>();
    Default processor(options.record());
    auto input = FramedInput<Sample>(0x33);
    auto result = FramedResult<Measure>(0xFF);
    processor.Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(result->Status, 0);
    EXPECT_EQ(result->Value, 0.0);
    EXPECT_EQ(result->Letter, 0);
}

TEST(Processor, WritesWhatTheAlgorithmReturns) {
    const auto processor = MakeScripted();
    processor->script = [](Sample&) { return Measure{7, -1.25, 'q'}; };
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>();
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(result->Status, 7);
    EXPECT_EQ(result->Value, -1.25);
    EXPECT_EQ(result->Letter, 'q');
}

TEST(Processor, KeepsThePaddingOfTheHostsRecord) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>(0xA7);
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    const auto bytes = result.Bytes();
    for (const std::size_t padding : {4U, 5U, 6U, 7U, 17U, 18U, 19U, 20U, 21U, 22U, 23U}) {
        EXPECT_EQ(bytes[padding], 0xA7) << "byte " << padding;
    }
}

TEST(Processor, GivesTheAlgorithmEveryByteOfTheInput) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>(0x6D);
    const auto given = input.Bytes();
    auto seen = given;
    seen.fill(0);
    processor->script = [&seen](Sample& sample) {
        std::memcpy(seen.data(), &sample, sizeof(sample));
        return Measure{};
    };
    auto result = FramedResult<Measure>();
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(seen, given);
}

TEST(Processor, GivesTheAlgorithmACopyOfTheInput) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>(0x11);
    const auto before = input.Bytes();
    processor->script = [](Sample& sample) {
        sample = {1, 2, nullptr};
        return Measure{};
    };
    auto result = FramedResult<Measure>();
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(input.Bytes(), before);
}

TEST(Processor, LeavesTheBuffersOfTheInputWhereTheyAre) {
    const auto processor = MakeScripted();
    int32_t buffer = 5;
    int32_t* seen = nullptr;
    processor->script = [&seen](Sample& sample) {
        seen = sample.Buffer;
        return Measure{};
    };
    auto input = FramedInput<Sample>();
    input->Buffer = &buffer;
    auto result = FramedResult<Measure>();
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(seen, &buffer);
}

TEST(Processor, ProcessesOncePerCall) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>();
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(processor->log, (Log{"DoProcess", "DoProcess"}));
}

TEST(Processor, OverwritesAFilledResultWithoutReleasingIt) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>(0x42);
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_TRUE(processor->disposed.empty());
}

TEST(Processor, PassesAnExceptionOfTheAlgorithmOnUnchanged) {
    struct Failure {
        int code;
    };
    const auto processor = MakeScripted();
    processor->script = [](Sample&) -> Measure { throw Failure{815}; };
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>();
    try {
        processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
        FAIL() << "nothing was thrown";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, 815);
    }
}

TEST(Processor, LeavesTheResultUntouchedWhenTheAlgorithmThrows) {
    const auto processor = MakeScripted();
    processor->script = [](Sample&) -> Measure { throw std::bad_alloc(); };
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>(0x5B);
    const auto before = result.Bytes();
    EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), std::bad_alloc);
    EXPECT_EQ(result.Bytes(), before);
}

TEST(Processor, WorksAgainAfterTheAlgorithmThrew) {
    const auto processor = MakeScripted();
    processor->script = [](Sample&) -> Measure { throw std::bad_alloc(); };
    auto input = FramedInput<Sample>();
    auto result = FramedResult<Measure>();
    EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), std::bad_alloc);
    processor->script = [](Sample&) { return Measure{0, 8.0, 'a'}; };
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(result->Value, 8.0);
}

// ---- the checks of Process

TEST(Processor, ThrowsForEveryFlawOfTheInputsFrame) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Sample), QUARRY_INPUT_TAG)) {
        auto input = FramedInput<Sample>();
        Apply(frame, input);
        auto result = FramedResult<Measure>();
        EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException)
            << frame;
    }
}

TEST(Processor, ThrowsForEveryFlawOfTheResultsFrame) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Measure), QUARRY_RESULT_TAG)) {
        auto input = FramedInput<Sample>();
        auto result = FramedResult<Measure>();
        Apply(frame, result);
        EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException)
            << frame;
    }
}

TEST(Processor, LeavesTheResultUntouchedWhenTheInputsFrameIsWrong) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Sample), QUARRY_INPUT_TAG)) {
        auto input = FramedInput<Sample>();
        Apply(frame, input);
        auto result = FramedResult<Measure>(0x99);
        const auto before = result.Bytes();
        EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
        EXPECT_EQ(result.Bytes(), before) << frame;
    }
}

TEST(Processor, LeavesTheResultUntouchedWhenItsFrameIsWrong) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Measure), QUARRY_RESULT_TAG)) {
        auto input = FramedInput<Sample>();
        auto result = FramedResult<Measure>(0x99);
        Apply(frame, result);
        const auto before = result.Bytes();
        EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
        EXPECT_EQ(result.Bytes(), before) << frame;
    }
}

TEST(Processor, ProcessesNothingWhenTheInputsFrameIsWrong) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Sample), QUARRY_INPUT_TAG)) {
        auto input = FramedInput<Sample>();
        Apply(frame, input);
        auto result = FramedResult<Measure>();
        EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
        EXPECT_TRUE(processor->log.empty()) << frame;
    }
}

TEST(Processor, ProcessesNothingWhenTheResultsFrameIsWrong) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Measure), QUARRY_RESULT_TAG)) {
        auto input = FramedInput<Sample>();
        auto result = FramedResult<Measure>();
        Apply(frame, result);
        EXPECT_THROW(processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
        EXPECT_TRUE(processor->log.empty()) << frame;
    }
}

/// Bytes<N> as options, input and result at once.
template <class Record>
class SameLength : public Processor<Record, Record, Record> {
public:
    using Processor<Record, Record, Record>::Processor;
    Record DoProcess(Record input) override { return input; }
};

template <std::size_t... Index>
void ExpectRecordsOfEveryLengthToTravel(std::index_sequence<Index...> /*lengths*/) {
    const auto travel = [](auto record) {
        using Record = decltype(record);
        auto options = FramedOptions<Record>();
        SameLength<Record> processor(options.record());
        auto input = FramedInput<Record>(0x3C);
        auto result = FramedResult<Record>(0xC3);
        processor.Process(input.template as<ProcessData>(), result.template as<ProcessResult>());
        EXPECT_EQ(result.Bytes(), input.Bytes()) << sizeof(Record);
    };
    (travel(Bytes<Index + 1>{}), ...);
}

TEST(Processor, TakesRecordsOfEveryLengthFrom1To120) {
    ExpectRecordsOfEveryLengthToTravel(std::make_index_sequence<120>());
}

TEST(Processor, RefusesRecordsThatAreLongerThanARecordMayBe) {
    auto options = FramedOptions<Bytes<121>>();
    EXPECT_THROW(SameLength<Bytes<121>>{options.record()}, MarshalingException);
}

class ProcessorCheckOrder : public testing::Test {
protected:
    void SetUp() override {
        auto options = FramedOptions<GainOptions>();
        processor = std::make_unique<Watched>(options.record());
        watched.clear();
    }
    void Process() { processor->Process(input.as<ProcessData>(), result.as<ProcessResult>()); }

    std::unique_ptr<Watched> processor;
    Framed<WatchedSample> input = FramedInput<WatchedSample>();
    Framed<WatchedMeasure> result = FramedResult<WatchedMeasure>();
};

TEST_F(ProcessorCheckOrder, IsInputThenResultThenAlgorithm) {
    Process();
    EXPECT_EQ(watched, (Log{"input 4", "result 4", "DoProcess"}));
}

TEST_F(ProcessorCheckOrder, EndsAtAWrongInput) {
    input.SetTag(QUARRY_RESULT_TAG);
    EXPECT_THROW(Process(), MarshalingException);
    EXPECT_EQ(watched, Log{"input 4"});
}

TEST_F(ProcessorCheckOrder, EndsAtAWrongResult) {
    result.SetTag(QUARRY_INPUT_TAG);
    EXPECT_THROW(Process(), MarshalingException);
    EXPECT_EQ(watched, (Log{"input 4", "result 4"}));
}

TEST_F(ProcessorCheckOrder, PassesTheResultsLengthWordThroughTheRangeCheck) {
    result.SetLength(121);
    EXPECT_THROW(Process(), MarshalingException);
    EXPECT_EQ(watched, (Log{"input 4", "result 121"}));
}

TEST_F(ProcessorCheckOrder, PassesTheResultsLengthWordThroughTheRangeCheckWhenDisposing) {
    result.SetLength(0);
    EXPECT_THROW(processor->DisposeResult(result.as<ProcessResult>()), MarshalingException);
    EXPECT_EQ(watched, Log{"result 0"});
}

TEST(Processor, ThrowsInvalidArgumentForANullInput) {
    const auto processor = MakeScripted();
    auto result = FramedResult<Measure>();
    EXPECT_THROW(processor->Process(nullptr, result.as<ProcessResult>()), std::invalid_argument);
}

TEST(Processor, ThrowsInvalidArgumentForANullResult) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>();
    EXPECT_THROW(processor->Process(input.as<ProcessData>(), nullptr), std::invalid_argument);
}

TEST(Processor, ReportsAWrongInputBeforeANullResult) {
    const auto processor = MakeScripted();
    auto input = FramedInput<Sample>();
    input.SetTag(0);
    EXPECT_THROW(processor->Process(input.as<ProcessData>(), nullptr), MarshalingException);
}

// ---- DisposeResult

TEST(Processor, GivesTheHostsRecordToDoDisposeData) {
    const auto processor = MakeScripted();
    auto result = FramedResult<Measure>();
    processor->DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(processor->disposed, std::vector<Measure*>{result.record()});
}

TEST(Processor, DoesNotClearADisposedRecord) {
    const auto processor = MakeScripted();
    auto result = FramedResult<Measure>(0x21);
    const auto before = result.Bytes();
    processor->DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST(Processor, ReleasesNothingByDefault) {
    auto options = FramedOptions<GainOptions>();
    Default processor(options.record());
    auto result = FramedResult<Measure>(0xFE);
    const auto before = result.Bytes();
    processor.DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST(Processor, ThrowsForEveryFlawOfADisposedRecordsFrame) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Measure), QUARRY_RESULT_TAG)) {
        auto result = FramedResult<Measure>();
        Apply(frame, result);
        EXPECT_THROW(processor->DisposeResult(result.as<ProcessResult>()), MarshalingException) << frame;
    }
}

TEST(Processor, ReleasesNothingWhenTheRecordsFrameIsWrong) {
    const auto processor = MakeScripted();
    for (const WrongFrame& frame : WrongFrames(sizeof(Measure), QUARRY_RESULT_TAG)) {
        auto result = FramedResult<Measure>();
        Apply(frame, result);
        EXPECT_THROW(processor->DisposeResult(result.as<ProcessResult>()), MarshalingException);
        EXPECT_TRUE(processor->disposed.empty()) << frame;
    }
}

TEST(Processor, ThrowsInvalidArgumentWhenItShallDisposeOfNull) {
    const auto processor = MakeScripted();
    EXPECT_THROW(processor->DisposeResult(nullptr), std::invalid_argument);
}

TEST(Processor, DisposesOfNoDataForNull) {
    const auto processor = MakeScripted();
    processor->DisposeData(nullptr);
    EXPECT_TRUE(processor->log.empty());
}

TEST(Processor, DisposesOfDataOnce) {
    const auto processor = MakeScripted();
    Measure measure{};
    processor->DisposeData(&measure);
    EXPECT_EQ(processor->disposed, std::vector<Measure*>{&measure});
}

// ---- options

TEST(Processor, KeepsEveryFieldOfItsOptions) {
    auto options = FramedOptions<GainOptions>();
    *options = {0xFEDCBA98U, -321, 6.75};
    const Scripted processor(options.record());
    EXPECT_EQ(processor.Options().Header, 0xFEDCBA98U);
    EXPECT_EQ(processor.Options().Gain, -321);
    EXPECT_EQ(processor.Options().Offset, 6.75);
}

TEST(Processor, KeepsItsOptionsWhenTheHostFreesThem) {
    auto options = std::make_unique<Framed<GainOptions>>(QUARRY_OPTIONS_TAG);
    **options = {1, 22, 333.0};
    const Scripted processor(options->record());
    **options = {0, 0, 0.0};
    options.reset();
    EXPECT_EQ(processor.Options().Gain, 22);
    EXPECT_EQ(processor.Options().Offset, 333.0);
}

TEST(Processor, IsNotBuiltWhenTheOptionsFrameIsWrong) {
    for (const WrongFrame& frame : WrongFrames(sizeof(GainOptions), QUARRY_OPTIONS_TAG)) {
        auto options = FramedOptions<GainOptions>();
        Apply(frame, options);
        EXPECT_THROW(Scripted{options.record()}, MarshalingException) << frame;
    }
}

TEST(Processor, IsNotBuiltFromNullOptions) {
    EXPECT_THROW(Scripted{nullptr}, std::invalid_argument);
}

TEST(Processor, LeavesTheHostsOptionsAsTheyAre) {
    auto options = FramedOptions<GainOptions>(0x4E);
    const auto before = options.Bytes();
    const Scripted processor(options.record());
    EXPECT_EQ(options.Bytes(), before);
}

// ---- end of life

TEST(Processor, IsDestroyedWholeThroughItsDisposableBase) {
    struct Counted : Default {
        Counted(GainOptions* source, int* destructions) : Default(source), count(destructions) {}
        ~Counted() override { ++*count; }
        int* count;
    };
    int destructions = 0;
    auto options = FramedOptions<GainOptions>();
    const Disposable* const target = new Counted(options.record(), &destructions);
    delete target;
    EXPECT_EQ(destructions, 1);
}

// ---- layout of the objects

Log slots;

/// Notes which of its functions a slot holds.
class SlotProcessor : public Processor<ProcessOptions, VoLInputData, VoLOutputData> {
public:
    using Processor::Processor;
    void Process(ProcessData* /*input*/, ProcessResult* /*result*/) override { slots.emplace_back("Process"); }
    void DisposeResult(ProcessResult* /*result*/) override { slots.emplace_back("DisposeResult"); }
    VoLOutputData DoProcess(VoLInputData data) override {
        slots.emplace_back("DoProcess");
        return {static_cast<int32_t>(data.Header), 0.5F};
    }
    void DoDisposeData(VoLOutputData* /*result*/) override { slots.emplace_back("DoDisposeData"); }
    void DisposeData(VoLOutputData* /*result*/) override { slots.emplace_back("DisposeData"); }
    void Dispose() override { slots.emplace_back("Dispose"); }
    ~SlotProcessor() override { slots.emplace_back("destructor"); }
};

class ProcessorSlots : public testing::Test {
protected:
    void SetUp() override {
        auto options = FramedOptions<ProcessOptions>();
        processor = new SlotProcessor(options.record());
        slots.clear();
    }
    void TearDown() override { delete processor; }

    SlotProcessor* processor = nullptr;
};

TEST_F(ProcessorSlots, OfTheInterfaceAreProcessAndDisposeResult) {
    auto* const interface = static_cast<IProcessor*>(processor);
    CallSlot<void, ProcessData*, ProcessResult*>(interface, 0, nullptr, nullptr);
    CallSlot<void, ProcessResult*>(interface, 1, nullptr);
    EXPECT_EQ(slots, (Log{"Process", "DisposeResult"}));
}

TEST_F(ProcessorSlots, GoOnWithTheAlgorithmAndItsRelease) {
    const auto result = CallSlot<VoLOutputData, VoLInputData>(processor, 2, VoLInputData{77, {}});
    CallSlot<void, VoLOutputData*>(processor, 3, nullptr);
    EXPECT_EQ(slots, (Log{"DoProcess", "DoDisposeData"}));
    EXPECT_EQ(result.Status, 77);
    EXPECT_EQ(result.Variance, 0.5F);
}

TEST_F(ProcessorSlots, EndWithTheDestructor) {
    CallSlot<void>(processor, 5);  // slot 4 destroys, slot 5 frees as well
    processor = nullptr;
    EXPECT_EQ(slots, Log{"destructor"});
}

TEST_F(ProcessorSlots, OfTheDisposableAreDisposeAndDestructor) {
    auto* const disposable = static_cast<Disposable*>(processor);
    CallSlot<void>(disposable, 0);
    CallSlot<void>(disposable, 2);  // slot 1 destroys, slot 2 frees as well
    processor = nullptr;
    EXPECT_EQ(slots, (Log{"Dispose", "destructor"}));
}

TEST_F(ProcessorSlots, OfTheDisposerAreDoDisposeDataAndDisposeData) {
    auto* const disposer = static_cast<Disposer<VoLOutputData>*>(processor);
    CallSlot<void, VoLOutputData*>(disposer, 0, nullptr);
    CallSlot<void, VoLOutputData*>(disposer, 1, nullptr);
    EXPECT_EQ(slots, (Log{"DoDisposeData", "DisposeData"}));
}

TEST_F(ProcessorSlots, OfAnInterfaceAloneDoNothing) {
    struct Idle : IProcessor {};
    Idle idle;
    auto result = FramedResult<VoLOutputData>(0x12);
    const auto before = result.Bytes();
    CallSlot<void, ProcessData*, ProcessResult*>(&idle, 0, nullptr, result.as<ProcessResult>());
    CallSlot<void, ProcessResult*>(&idle, 1, result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST_F(ProcessorSlots, OfASharpnessProcessorHoldItsAlgorithm) {
    auto options = FramedOptions<ProcessOptions>();
    VarianceOfLaplacianProcessor sharpness(options.record());
    std::vector<uint8_t> uniform(60, 90);  // 5 x 4 pixels
    const auto result =
        CallSlot<VoLOutputData, VoLInputData>(&sharpness, 2, VoLInputData{0, {uniform.data(), 5, 4, 15, 0}});
    EXPECT_EQ(result.Variance, 0.0F);
}

TEST(ProcessorLayout, HasTheInterfaceFirst) {
    auto options = FramedOptions<ProcessOptions>();
    SlotProcessor processor(options.record());
    EXPECT_EQ(static_cast<void*>(static_cast<IProcessor*>(&processor)), static_cast<void*>(&processor));
}

TEST(ProcessorLayout, HasTheOptionsSecondAndTheDisposerThird) {
    auto options = FramedOptions<ProcessOptions>();
    SlotProcessor processor(options.record());
    const auto* const start = reinterpret_cast<char*>(&processor);
    const auto* const disposable = reinterpret_cast<char*>(static_cast<Disposable*>(&processor));
    const auto* const disposer = reinterpret_cast<char*>(static_cast<Disposer<VoLOutputData>*>(&processor));
    EXPECT_EQ(disposable - start, 8);
    EXPECT_EQ(disposer - disposable, 16) << "a table and eight bytes of options";
}

TEST(ProcessorLayout, AddsNothingToItsBases) {
    EXPECT_EQ(sizeof(Processor<ProcessOptions, VoLInputData, VoLOutputData>), 3 * sizeof(void*) + 8);
    EXPECT_EQ(sizeof(VarianceOfLaplacianProcessor), 3 * sizeof(void*) + 8);
}

TEST(ProcessorLayout, HasNoDestructorInItsInterfaces) {
    EXPECT_FALSE(std::has_virtual_destructor_v<IProcessor>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Disposer<VoLOutputData>>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Disposable>);
}

TEST(ProcessorLayout, IsAnInterfaceOptionedAndADisposer) {
    using Frame = Processor<ProcessOptions, VoLInputData, VoLOutputData>;
    EXPECT_TRUE((std::is_base_of_v<IProcessor, Frame>));
    EXPECT_TRUE((std::is_base_of_v<Optioned<ProcessOptions>, Frame>));
    EXPECT_TRUE((std::is_base_of_v<Disposable, Optioned<ProcessOptions>>));
    EXPECT_TRUE((std::is_base_of_v<Disposer<VoLOutputData>, Frame>));
}

// ---- families

TEST(ProcessorFamilies, HaveTheFrameOfTheirRecords) {
    EXPECT_TRUE(
        (std::is_base_of_v<Processor<BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult>,
                           BinaryProcessor>));
    EXPECT_TRUE((std::is_base_of_v<Processor<ClassificationOptions, ClassificationData, ClassificationResult>,
                                   ClassificationProcessor>));
    EXPECT_TRUE((std::is_base_of_v<Processor<ClustererOptions, ClustererData, ClustererResult>, ClustererBase>));
    EXPECT_TRUE((std::is_base_of_v<Processor<FilterOptions, FilterData, FilterResult>, FilterBase>));
    EXPECT_TRUE(
        (std::is_base_of_v<Processor<ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult>,
                           ContourMaskProcessor>));
    EXPECT_TRUE((std::is_base_of_v<Processor<ContourIntersectionProcessorOptions, ContourIntersectionProcessorData,
                                             ContourInstersectionProcessorResult>,
                                   ContourIntersectionProcessor>));
    EXPECT_TRUE((std::is_base_of_v<Processor<KMeanOptions, KMeanData, KMeanResult>, KMeanColorExtractor>));
    EXPECT_TRUE((std::is_base_of_v<Processor<OFLineOptions, OFLineData, OFLineResult>, OpticalFlowLineProcessor>));
    EXPECT_TRUE(
        (std::is_base_of_v<Processor<RectExtractorOptions, RectExtractorData, RectExtractorResult>, RectExtractor>));
    EXPECT_TRUE(
        (std::is_base_of_v<Processor<ProcessOptions, VoLInputData, VoLOutputData>, VarianceOfLaplacianProcessor>));
}

/// Gives a filled record back to a processor of the class.
template <class Family, class Options, class Result>
void GiveBack(Framed<Result>& result) {
    auto options = FramedOptions<Options>();
    Family family(options.record());
    family.DisposeResult(result.template as<ProcessResult>());
}

TEST(ProcessorFamilies, ReleaseTheImageOfABinaryOperation) {
    auto result = FramedResult<ImageOperationResult>();
    *result = CreateImageOperationResult(4, 3, 12, 1);
    GiveBack<BinaryProcessor, BinaryImageOperationOptions>(result);
    EXPECT_EQ(result->Image, nullptr);
}

TEST(ProcessorFamilies, ReleaseTheResponsesOfADetector) {
    auto result = FramedResult<ClassificationResult>();
    *result = CreateClassificationResult(3);
    GiveBack<ClassificationProcessor, ClassificationOptions>(result);
    EXPECT_EQ(result->Responses, nullptr);
    EXPECT_EQ(result->Count, 3);
}

TEST(ProcessorFamilies, KeepTheResponsesOfADetectionThatCountsNone) {
    Response shared{};
    auto result = FramedResult<ClassificationResult>();
    *result = {0, 0, &shared};
    GiveBack<ClassificationProcessor, ClassificationOptions>(result);
    EXPECT_EQ(result->Responses, &shared);
}

TEST(ProcessorFamilies, ReleaseTheClustersWithTheirContours) {
    auto result = FramedResult<ClustererResult>();
    *result = CreateClustererResult(2);
    result->Clusters[0] = {CreateContour(5), 0.0F, 0.0F};
    result->Clusters[1] = {CreateContour(0), 0.0F, 0.0F};
    GiveBack<ClustererBase, ClustererOptions>(result);
    EXPECT_EQ(result->Clusters, nullptr);
}

TEST(ProcessorFamilies, LeaveTheImageToAConcreteFilter) {
    auto result = FramedResult<FilterResult>();
    *result = CreateFilterResult(4, 3, 12, 1);
    Image* const image = result->Image;
    GiveBack<FilterBase, FilterOptions>(result);
    EXPECT_EQ(result->Image, image);
    DestroyFilterResult(result.record());
}

TEST(ProcessorFamilies, LeaveTheGridMaskToTheHost) {
    auto result = FramedResult<ContourMaskProcessorResult>();
    *result = CreateContourMaskProcessorResult(6, 4);
    Mask* const mask = result->Mask;
    GiveBack<ContourMaskProcessor, ContourMaskProcessorOptions>(result);
    EXPECT_EQ(result->Mask, mask);
    DestroyContourMaskProcessorResult(result.record());
}

TEST(ProcessorFamilies, LeaveThePositionOfAContourAsItIs) {
    auto result = FramedResult<ContourInstersectionProcessorResult>();
    *result = {0, -1};
    GiveBack<ContourIntersectionProcessor, ContourIntersectionProcessorOptions>(result);
    EXPECT_EQ(result->Position, -1);
}

TEST(ProcessorFamilies, ReleaseTheClothingColours) {
    auto result = FramedResult<KMeanResult>();
    *result = CreateKMeanResult(4);
    GiveBack<KMeanColorExtractor, KMeanOptions>(result);
    EXPECT_EQ(result->Colors, nullptr);
}

TEST(ProcessorFamilies, ReleaseTheMotionAcrossALine) {
    auto result = FramedResult<OFLineResult>();
    *result = CreateOFLineResult(9);
    GiveBack<OpticalFlowLineProcessor, OFLineOptions>(result);
    EXPECT_EQ(result->Values, nullptr);
}

TEST(ProcessorFamilies, ReleaseTheRotatedRectangle) {
    auto result = FramedResult<RectExtractorResult>();
    *result = CreateRectExtractorResult(4, 3, 12, 1);
    GiveBack<RectExtractor, RectExtractorOptions>(result);
    EXPECT_EQ(result->Image, nullptr);
}

TEST(ProcessorFamilies, ReleaseNothingOfASharpness) {
    auto result = FramedResult<VoLOutputData>(0x39);
    const auto before = result.Bytes();
    GiveBack<VarianceOfLaplacianProcessor, ProcessOptions>(result);
    EXPECT_EQ(result.Bytes(), before);
}

}  // namespace
