// Frames, views, handles and results of the host side, whatever the operation.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "Quarry/Host.hpp"
#include "support/Allocations.h"

#ifdef CV_VERSION
#error "Host.hpp must not bring OpenCV along"
#endif

namespace quarry::test {
namespace {

template <class... Types>
constexpr bool kMoveOnly = ((std::is_nothrow_move_constructible_v<Types> && std::is_nothrow_move_assignable_v<Types> &&
                             !std::is_copy_constructible_v<Types> && !std::is_copy_assignable_v<Types>)&&...);

static_assert(kMoveOnly<Handle, ImageSubtractor::Picture, FastNlMeansDenoising::Picture, RectExtractor::Picture,
                        SimilarityTransform::Picture, FirePixels::Flames, ContourGrid::Cells, OutlineResult,
                        ContourClusters::Clusters, Detections, OpticalFlowLine::Values, ClothingColorsResult>,
              "what ends something has one owner");
static_assert(
    kMoveOnly<VarianceOfLaplacian, FaceVarianceOfLaplacian, ImageSubtractor, CosineSimilarity, FastNlMeansDenoising,
              BackgroundModel, DenseOpticalFlow, OpticalFlowLine, MosseTracker, ObjectContour, ContourGrid,
              ContourIntersection, ContourRate, ContourClusters, RectExtractor, ClothingColors, CascadeDetector,
              PeopleDetector, ColorComparison, FirePixels, SimilarityTransform, RotationTransform>,
    "an operation has one owner");

constexpr bool kOptionsAreAggregates =
    std::is_aggregate_v<BackgroundModel::Options> && std::is_aggregate_v<CascadeDetector::Options> &&
    std::is_aggregate_v<ContourGrid::Options> && std::is_aggregate_v<DenseOpticalFlow::Options>;
static_assert(kOptionsAreAggregates, "options are given by name");

static_assert(std::is_convertible_v<ImageSubtractor::Picture&, ImageView> &&
                  std::is_convertible_v<const RectExtractor::Picture&, ImageView> &&
                  std::is_convertible_v<const FirePixels::Flames&, MaskView> &&
                  std::is_convertible_v<FlowResult, FlowView>,
              "a view of what stays");
static_assert(!std::is_constructible_v<ImageView, ImageSubtractor::Picture> &&
                  !std::is_constructible_v<ImageView, const RectExtractor::Picture> &&
                  !std::is_constructible_v<MaskView, FirePixels::Flames>,
              "no view of what ends with the statement");
static_assert(std::is_invocable_v<FastNlMeansDenoising, ImageSubtractor::Picture> &&
                  std::is_invocable_v<FastNlMeansDenoising, const ImageSubtractor::Picture&> &&
                  std::is_invocable_v<FastNlMeansDenoising, ImageView> &&
                  std::is_invocable_v<ObjectContour, ContourGrid::Cells, RelRect>,
              "calls take both");
static_assert(!std::is_convertible_v<FirePixels::Flames&, ImageArgument> &&
                  !std::is_convertible_v<ImageView, MaskArgument>,
              "but nothing of another kind");

static_assert(kTagOf<ProcessOptions> == 0x0F0F0F0F && kTagOf<TransformOptions> == 0x0F0F0F0F);
static_assert(kTagOf<VoLInputData> == 0x10F0F0F0 && kTagOf<OFLineData> == 0x10F0F0F0);
static_assert(kTagOf<VoLOutputData> == 0x1FFF0000 && kTagOf<ClustererResult> == 0x1FFF0000 &&
              kTagOf<OFLineResult> == 0x1FFF0000 && kTagOf<MosseTrackerResult> == 0x1FFF0000);

template <class Record>
uint32_t WordAt(Framed<Record>& framed, std::ptrdiff_t offset) {
    uint32_t word = 0;
    std::memcpy(&word, framed.template As<char>() + offset, sizeof(word));
    return word;
}

TEST(HostHeaderFramed, PutsLengthBeforeAndTagAfterTheRecord) {
    Framed<VoLOutputData> result;
    EXPECT_EQ(WordAt(result, -4), sizeof(VoLOutputData));
    EXPECT_EQ(WordAt(result, sizeof(VoLOutputData)), uint32_t{QUARRY_RESULT_TAG});
    Framed<VoLInputData> input({7, {}}, 0xABCD);
    EXPECT_EQ(input.record().Header, 7U);
    EXPECT_EQ(WordAt(input, sizeof(VoLInputData)), 0xABCDU);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(input.As<void>()) % alignof(VoLInputData), 0U);
}

TEST(HostHeaderFramed, IsRefusedByTheLibraryWithAnotherTag) {
    const Handle handle = Create(CreateCVLaplacianVarianceProcessor, ProcessOptions{});
    Framed<VoLInputData> input({}, QUARRY_RESULT_TAG);
    Framed<VoLOutputData> result;
    EXPECT_THROW(Process(handle.get(), input.As<ProcessData>(), result.As<ProcessResult>()), MarshalingException);
}

TEST(HostHeaderViews, SayWhatTheyShow) {
    const std::vector<uint8_t> pixels(std::size_t{5} * 4 * 3);
    const ImageView image(pixels, 5, 4, 99);
    EXPECT_EQ(image.width(), 5);
    EXPECT_EQ(image.height(), 4);
    EXPECT_EQ(image.stride(), 15);
    EXPECT_EQ(image.data(), pixels.data());
    EXPECT_EQ(image.timestamp(), 99U);
    EXPECT_EQ(image.elements().size(), pixels.size());
    EXPECT_EQ(image.Row(2).begin(), &pixels[30]);
    EXPECT_EQ(image.Row(2).size(), 15U);
    const Image record = image.record();
    EXPECT_EQ(record.data, pixels.data());
    EXPECT_EQ(record.width, 5);
    EXPECT_EQ(record.height, 4);
    EXPECT_EQ(record.stride, 15);
    EXPECT_EQ(record.timestamp, 99U);
}

TEST(HostHeaderViews, AreMadeInAllTheirWays) {
    const std::vector<uint8_t> pixels(60, 3);
    const ImageView byAddress(pixels.data(), 5, 4);
    const ImageView bySize({pixels.data(), pixels.size()}, 5, 4);
    uint8_t array[60] = {};
    EXPECT_EQ(ImageView(array, 5, 4, 2).data(), array);
    EXPECT_EQ(MaskView(array, 12, 5).elements().size(), 60U);
    const ImageView byRows = ImageView::FromRows(pixels.data(), 5, 4, 15, 3, 8);
    EXPECT_EQ(byAddress.data(), bySize.data());
    EXPECT_EQ(byAddress.timestamp(), 0U);
    EXPECT_EQ(byRows.data(), pixels.data());
    EXPECT_EQ(byRows.timestamp(), 8U);
    EXPECT_EQ(MaskView::FromRows(pixels.data(), 12, 5, 12).At(11, 4), 3);
    const std::array<AbsVector, 6> motion = {{{0, 0}, {1, 2}, {0, 0}, {0, 0}, {0, 0}, {3, 4}}};
    const FlowView flow(motion, 3, 2);
    EXPECT_EQ(flow.At(1, 0).Dy, 2);
    EXPECT_EQ(flow.At(2, 1).Dx, 3);
}

TEST(HostHeaderViews, MayBeEmpty) {
    const ImageView none(nullptr, 0, 0);
    EXPECT_TRUE(none.elements().empty());
    EXPECT_EQ(MaskView(nullptr, 0, 7).height(), 7);
}

TEST(HostHeaderViews, SpansCountWhatTheyAreMadeOf) {
    const float plain[] = {1, 2, 3};
    const std::vector<float> vector = {4, 5};
    const Span<float> fromPlain(plain);
    const Span<float> fromVector(vector);
    EXPECT_EQ(fromPlain.size(), 3U);
    EXPECT_EQ(fromPlain[2], 3);
    EXPECT_EQ(fromVector.end() - fromVector.begin(), 2);
    EXPECT_TRUE(Span<float>().empty());
}

const std::vector<uint8_t>& Bright() {
    static const std::vector<uint8_t> pixels(std::size_t{8} * 6 * 3, 90);
    return pixels;
}

ImageSubtractor::Picture Difference() {
    ImageSubtractor subtract;  // ends before its result
    const std::vector<uint8_t> dark(Bright().size(), 20);
    return subtract(ImageView(Bright(), 8, 6, 5), ImageView(dark, 8, 6));
}

TEST(HostHeaderResults, OutliveTheirOperation) {
    const ImageSubtractor::Picture difference = Difference();
    EXPECT_EQ(difference.width(), 8);
    EXPECT_EQ(difference.height(), 6);
    EXPECT_EQ(difference.stride(), 24);
    EXPECT_EQ(difference.timestamp(), 5U);
    for (const uint8_t byte : difference.view().elements()) ASSERT_EQ(byte, 70);
}

TEST(HostHeaderResults, MoveAndEndOnce) {
    (void)Difference();
    const std::size_t before = LiveBlocks();
    {
        ImageSubtractor::Picture first = Difference();
        const uint8_t* const pixels = first.data();
        ImageSubtractor::Picture second = std::move(first);
        EXPECT_EQ(second.data(), pixels);
        ImageSubtractor::Picture third = Difference();
        third = std::move(second);
        EXPECT_EQ(third.data(), pixels);
        ImageSubtractor::Picture& itself = third;
        third = std::move(itself);
        EXPECT_EQ(third.data(), pixels);
    }
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(HostHeaderResults, AreInputsOfOtherOperations) {
    FastNlMeansDenoising denoise;
    VarianceOfLaplacian sharpness;
    EXPECT_EQ(sharpness(denoise(Difference())), 0.0F);
}

TEST(HostHeaderHandle, EndsWithItsOwner) {
    const std::size_t before = LiveBlocks();
    {
        Handle first = Create(CreateCVCosineSimilarity, ProcessOptions{});
        Handle second = std::move(first);
        EXPECT_NE(second.get(), nullptr);
        second = Handle();
        EXPECT_EQ(LiveBlocks(), before);
        second = Handle(nullptr);
    }
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(HostHeaderOperations, Move) {
    VarianceOfLaplacian first;
    VarianceOfLaplacian second = std::move(first);
    const ImageView frame(Bright(), 8, 6);
    EXPECT_EQ(second(frame), 0.0F);
    first = VarianceOfLaplacian();
    EXPECT_EQ(first(frame), 0.0F);
}

TEST(HostHeaderOperations, SayWhatTheLibraryRefusesAndKeepNothing) {
    VarianceOfLaplacian sharpness;
    const ImageView none(nullptr, 0, 0);
    EXPECT_ANY_THROW(sharpness(none));
    RectExtractor extract;
    const std::size_t before = LiveBlocks();
    EXPECT_THROW(extract(none, {0, 0, 4, 4, 0}), std::invalid_argument);
    EXPECT_EQ(LiveBlocks(), before);
}

}  // namespace
}  // namespace quarry::test
