#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>

#include "Quarry.Frame/Processor.h"
#include "Quarry.Frame/RecordFields.h"
#include "Quarry.Frame/Updatable.h"
#include "support/Framed.h"

namespace {

using quarry::test::FramedInput;
using quarry::test::FramedOptions;
using quarry::test::FramedResult;

/// Where a field lies in its record.
struct Place {
    std::size_t offset;
    std::size_t width;
};

/// The bytes of each result record that a host reads, by hand: they are a promise to hosts that know only offsets.
template <class Result>
struct Written;

// clang-format off
template <> struct Written<VoLOutputData> { static constexpr Place places[] = {{0, 4}, {4, 4}}; };
template <> struct Written<ImageOperationResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<CosineOutputData> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<FilterResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<ContourResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<ContourMaskProcessorResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<ContourInstersectionProcessorResult> { static constexpr Place places[] = {{0, 4}, {4, 4}}; };
template <> struct Written<ContourRateMeasuringOutputData> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<ClustererResult> { static constexpr Place places[] = {{8, 8}, {16, 4}}; };
template <> struct Written<RectExtractorResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<KMeanResult> { static constexpr Place places[] = {{0, 4}, {4, 4}, {8, 8}}; };
template <> struct Written<ClassificationResult> { static constexpr Place places[] = {{0, 4}, {4, 4}, {8, 8}}; };
template <> struct Written<ColorComparingOutputData> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<FireOutputData> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<TransformResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<OFLineResult> { static constexpr Place places[] = {{8, 8}, {16, 4}}; };
template <> struct Written<BackgroundResult> { static constexpr Place places[] = {{0, 4}, {8, 8}, {16, 8}, {24, 8}}; };
template <> struct Written<OFCResult> { static constexpr Place places[] = {{0, 4}, {8, 8}}; };
template <> struct Written<MosseTrackerResult> {
    static constexpr Place places[] = {{0, 4}, {4, 2}, {6, 2}, {8, 2}, {10, 2}, {12, 1}, {13, 3}};
};
// clang-format on

constexpr unsigned char kHosts = 0xC3;
constexpr unsigned char kComputed = 0x5A;

template <class Result>
Result Computed() {
    Result result;
    std::memset(&result, kComputed, sizeof(result));
    return result;
}

/// What the host's record must hold after a result has been written over it.
template <class Result>
std::array<unsigned char, sizeof(Result)> Expected() {
    std::array<unsigned char, sizeof(Result)> bytes;
    bytes.fill(kHosts);
    for (const Place& place : Written<Result>::places) {
        for (std::size_t i = 0; i < place.width; ++i) bytes[place.offset + i] = kComputed;
    }
    return bytes;
}

template <class Result>
class RecordFields : public testing::Test {};

using ResultRecords =
    testing::Types<VoLOutputData, ImageOperationResult, CosineOutputData, FilterResult, ContourResult,
                   ContourMaskProcessorResult, ContourInstersectionProcessorResult, ContourRateMeasuringOutputData,
                   ClustererResult, RectExtractorResult, KMeanResult, ClassificationResult, ColorComparingOutputData,
                   FireOutputData, TransformResult, OFLineResult, BackgroundResult, OFCResult, MosseTrackerResult>;
TYPED_TEST_SUITE(RecordFields, ResultRecords, );

TYPED_TEST(RecordFields, AreWrittenAndNothingBesides) {
    auto result = FramedResult<TypeParam>(kHosts);
    quarry::WriteFields(Computed<TypeParam>(), result.record());
    EXPECT_EQ(result.Bytes(), Expected<TypeParam>());
}

TYPED_TEST(RecordFields, AreWrittenByAProcessorAndNothingBesides) {
    class Computing : public Processor<ProcessOptions, VoLInputData, TypeParam> {
    public:
        using Processor<ProcessOptions, VoLInputData, TypeParam>::Processor;
        TypeParam DoProcess(VoLInputData /*data*/) override { return Computed<TypeParam>(); }
    };
    auto options = FramedOptions<ProcessOptions>();
    Computing processor(options.record());
    auto input = FramedInput<VoLInputData>();
    auto result = FramedResult<TypeParam>(kHosts);
    processor.Process(input.template as<ProcessData>(), result.template as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), Expected<TypeParam>());
}

TYPED_TEST(RecordFields, AreWrittenByAnUpdaterAndNothingBesides) {
    class Computing : public Updatable<ProcessOptions, VoLInputData, TypeParam> {
    public:
        using Updatable<ProcessOptions, VoLInputData, TypeParam>::Updatable;
        bool NeedInitialize(VoLInputData /*data*/) override { return true; }
        void DoInitialize(VoLInputData /*data*/) override { this->InitResult(); }
        void InitResult() override { this->result = &own; }

    private:
        TypeParam own = Computed<TypeParam>();
    };
    auto options = FramedOptions<ProcessOptions>();
    Computing updater(options.record());
    auto input = FramedInput<VoLInputData>();
    updater.Update(input.template as<UpdateData>());
    auto result = FramedResult<TypeParam>(kHosts);
    updater.GetResult(result.template as<UpdateResult>());
    EXPECT_EQ(result.Bytes(), Expected<TypeParam>());
}

TYPED_TEST(RecordFields, AreAllZeroInTheDefaultResult) {
    class Default : public Processor<ProcessOptions, VoLInputData, TypeParam> {
    public:
        using Processor<ProcessOptions, VoLInputData, TypeParam>::Processor;
    };
    auto options = FramedOptions<ProcessOptions>();
    Default processor(options.record());
    auto input = FramedInput<VoLInputData>();
    auto result = FramedResult<TypeParam>(kHosts);
    processor.Process(input.template as<ProcessData>(), result.template as<ProcessResult>());
    auto expected = Expected<TypeParam>();
    for (unsigned char& byte : expected) byte = byte == kComputed ? 0 : byte;
    EXPECT_EQ(result.Bytes(), expected);
}

}  // namespace
