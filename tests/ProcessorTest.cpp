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
#include "support/Framed.h"
#include "support/Slots.h"
#include "support/WrongFrames.h"

using namespace quarry::test;

namespace {

using Log = std::vector<std::string>;

/// A processor that overrides nothing.
class Default : public Processor<ProcessOptions, VoLInputData, VoLOutputData> {
public:
    using Processor::Processor;
};

/// Notes which of its functions were called.
class Noting : public Default {
public:
    using Default::Default;
    VoLOutputData DoProcess(VoLInputData /*sample*/) override {
        log.emplace_back("DoProcess");
        return {};
    }
    void DoDisposeData(VoLOutputData* measure) override {
        log.emplace_back("DoDisposeData");
        disposed.push_back(measure);
    }

    Log log;
    std::vector<VoLOutputData*> disposed;
};

std::unique_ptr<Noting> MakeNoting() {
    auto options = FramedOptions<ProcessOptions>();
    return std::make_unique<Noting>(options.record());
}

/// Records whose length checks this file watches.
struct WatchedSample {
    int32_t Header;
};
struct WatchedMeasure {
    int32_t Status;
};
Log watched;

class Watched : public Processor<ProcessOptions, WatchedSample, WatchedMeasure> {
public:
    using Processor::Processor;
    WatchedMeasure DoProcess(WatchedSample /*sample*/) override {
        watched.emplace_back("DoProcess");
        return {};
    }
};

}  // namespace

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
    auto options = FramedOptions<ProcessOptions>();
    Default processor(options.record());
    const VoLOutputData measure = processor.DoProcess(VoLInputData{});
    EXPECT_EQ(measure.Status, 0);
    EXPECT_EQ(measure.Variance, 0.0F);
}

TEST(Processor, WritesTheDefaultRecordOverWhatTheHostHad) {
    auto options = FramedOptions<ProcessOptions>();
    Default processor(options.record());
    auto input = FramedInput<VoLInputData>(0x33);
    auto result = FramedResult<VoLOutputData>(0xFF);
    processor.Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(result->Status, 0);
    EXPECT_EQ(result->Variance, 0.0F);
}

TEST(Processor, OverwritesAFilledResultWithoutReleasingIt) {
    const auto processor = MakeNoting();
    auto input = FramedInput<VoLInputData>();
    auto result = FramedResult<VoLOutputData>(0x42);
    processor->Process(input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_TRUE(processor->disposed.empty());
}

// ---- the checks of Process

class ProcessorCheckOrder : public testing::Test {
protected:
    void SetUp() override {
        auto options = FramedOptions<ProcessOptions>();
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

TEST(Processor, ReportsAWrongInputBeforeANullResult) {
    const auto processor = MakeNoting();
    auto input = FramedInput<VoLInputData>();
    input.SetTag(0);
    EXPECT_THROW(processor->Process(input.as<ProcessData>(), nullptr), MarshalingException);
}

// ---- DisposeResult

TEST(Processor, GivesTheHostsRecordToDoDisposeData) {
    const auto processor = MakeNoting();
    auto result = FramedResult<VoLOutputData>();
    processor->DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(processor->disposed, std::vector<VoLOutputData*>{result.record()});
}

TEST(Processor, DoesNotClearADisposedRecord) {
    const auto processor = MakeNoting();
    auto result = FramedResult<VoLOutputData>(0x21);
    const auto before = result.Bytes();
    processor->DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST(Processor, ReleasesNothingByDefault) {
    auto options = FramedOptions<ProcessOptions>();
    Default processor(options.record());
    auto result = FramedResult<VoLOutputData>(0xFE);
    const auto before = result.Bytes();
    processor.DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST(Processor, ThrowsForEveryFlawOfADisposedRecordsFrame) {
    const auto processor = MakeNoting();
    for (const WrongFrame& frame : WrongFrames(sizeof(VoLOutputData), QUARRY_RESULT_TAG)) {
        auto result = FramedResult<VoLOutputData>();
        Apply(frame, result);
        EXPECT_THROW(processor->DisposeResult(result.as<ProcessResult>()), MarshalingException) << frame;
    }
}

TEST(Processor, ReleasesNothingWhenTheRecordsFrameIsWrong) {
    const auto processor = MakeNoting();
    for (const WrongFrame& frame : WrongFrames(sizeof(VoLOutputData), QUARRY_RESULT_TAG)) {
        auto result = FramedResult<VoLOutputData>();
        Apply(frame, result);
        EXPECT_THROW(processor->DisposeResult(result.as<ProcessResult>()), MarshalingException);
        EXPECT_TRUE(processor->disposed.empty()) << frame;
    }
}

TEST(Processor, ThrowsInvalidArgumentWhenItShallDisposeOfNull) {
    const auto processor = MakeNoting();
    EXPECT_THROW(processor->DisposeResult(nullptr), std::invalid_argument);
}

TEST(Processor, DisposesOfNoDataForNull) {
    const auto processor = MakeNoting();
    processor->DisposeData(nullptr);
    EXPECT_TRUE(processor->log.empty());
}

TEST(Processor, DisposesOfDataOnce) {
    const auto processor = MakeNoting();
    VoLOutputData measure{};
    processor->DisposeData(&measure);
    EXPECT_EQ(processor->disposed, std::vector<VoLOutputData*>{&measure});
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

TEST(ProcessorFamilies, LeaveTheImageToAConcreteFilter) {
    auto result = FramedResult<FilterResult>();
    *result = CreateFilterResult(4, 3, 12, 1);
    Image* const image = result->Image;
    auto options = FramedOptions<FilterOptions>();
    FilterBase(options.record()).DisposeResult(result.as<ProcessResult>());
    EXPECT_EQ(result->Image, image);
    DestroyFilterResult(result.record());
}

}  // namespace
