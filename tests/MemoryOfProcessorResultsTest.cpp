#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "Quarry/Memory.h"
#include "support/Allocations.h"
#include "support/MemoryChecks.h"

namespace {

using namespace quarry::test;

// ---- results that are a status and an image

/// One of the four result records that hold an image, with its two functions.
template <class Record, Record (*CreateRecord)(int, int, int, unsigned long long), void (*DestroyRecord)(Record*),
          Image* Record::*Field>
struct ImageResult {
    using Result = Record;
    static Record Create(int width, int height, int stride, unsigned long long timestamp) {
        return CreateRecord(width, height, stride, timestamp);
    }
    static void Destroy(Record* result) { DestroyRecord(result); }
    static Image*& ImageOf(Record& result) { return result.*Field; }
};

template <class Case>
class ImageResultMemory : public testing::Test {};

// One class per record, so that the name of a test says which one failed.
struct OfImageOperation : ImageResult<ImageOperationResult, CreateImageOperationResult, DestroyImageOperationResult,
                                      &ImageOperationResult::Image> {};
struct OfFilter : ImageResult<FilterResult, CreateFilterResult, DestroyFilterResult, &FilterResult::Image> {};
struct OfTransform
    : ImageResult<TransformResult, CreateTransformResult, DestroyTransformResult, &TransformResult::ResultImage> {};
struct OfRectExtractor : ImageResult<RectExtractorResult, CreateRectExtractorResult, DestroyRectExtractorResult,
                                     &RectExtractorResult::Image> {};
using ImageResults = testing::Types<OfImageOperation, OfFilter, OfTransform, OfRectExtractor>;
TYPED_TEST_SUITE(ImageResultMemory, ImageResults, );

TYPED_TEST(ImageResultMemory, HasStatusZero) {
    auto result = TypeParam::Create(4, 2, 12, 99);
    EXPECT_EQ(result.Status, 0);
    TypeParam::Destroy(&result);
}

TYPED_TEST(ImageResultMemory, HasAnImageOfTheArguments) {
    auto result = TypeParam::Create(4, 2, 12, 99);
    const Image* const image = TypeParam::ImageOf(result);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 4);
    EXPECT_EQ(image->height, 2);
    EXPECT_EQ(image->stride, 12);
    EXPECT_EQ(image->timestamp, 99U);
    FillWhole(image->data, 24);
    TypeParam::Destroy(&result);
}

TYPED_TEST(ImageResultMemory, AllocatesTheImageAlone) {
    EXPECT_EQ(RequestsOf([] { return TypeParam::Create(4, 5, 100, 0); },
                         [](typename TypeParam::Result result) { TypeParam::Destroy(&result); }),
              (Sizes{32, 500}));
}

TYPED_TEST(ImageResultMemory, RefusesANegativeSize) {
    ExpectRefused([] { TypeParam::Create(4, kWrapsNegative, kWrapsNegative, 0); });
}

TYPED_TEST(ImageResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { TypeParam::Create(4, 2, 12, 0); });
}

TYPED_TEST(ImageResultMemory, ReleasesItsImageAndSetsItToNull) {
    const std::size_t live = LiveBlocks();
    auto result = TypeParam::Create(4, 2, 12, 0);
    TypeParam::Destroy(&result);
    EXPECT_EQ(TypeParam::ImageOf(result), nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TYPED_TEST(ImageResultMemory, ReleasesNothingWithoutAnImage) {
    typename TypeParam::Result result{};
    const std::size_t live = LiveBlocks();
    TypeParam::Destroy(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TYPED_TEST(ImageResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    TypeParam::Destroy(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- results that are a status and a mask

template <class Record, Record (*CreateRecord)(int, int), void (*DestroyRecord)(Record*), Mask* Record::*Field>
struct MaskResult {
    using Result = Record;
    static Record Create(int width, int height) { return CreateRecord(width, height); }
    static void Destroy(Record* result) { DestroyRecord(result); }
    static Mask*& MaskOf(Record& result) { return result.*Field; }
};

template <class Case>
class MaskResultMemory : public testing::Test {};

struct OfContourMask : MaskResult<ContourMaskProcessorResult, CreateContourMaskProcessorResult,
                                  DestroyContourMaskProcessorResult, &ContourMaskProcessorResult::Mask> {};
struct OfFire : MaskResult<FireOutputData, CreateFireOutputData, DestroyFireOutputData, &FireOutputData::FireMask> {};
using MaskResults = testing::Types<OfContourMask, OfFire>;
TYPED_TEST_SUITE(MaskResultMemory, MaskResults, );

TYPED_TEST(MaskResultMemory, HasStatusZero) {
    auto result = TypeParam::Create(7, 3);
    EXPECT_EQ(result.Status, 0);
    TypeParam::Destroy(&result);
}

TYPED_TEST(MaskResultMemory, HasAMaskOfTheArguments) {
    auto result = TypeParam::Create(7, 3);
    const Mask* const mask = TypeParam::MaskOf(result);
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(mask->width, 7);
    EXPECT_EQ(mask->height, 3);
    FillWhole(mask->data, 21);
    TypeParam::Destroy(&result);
}

TYPED_TEST(MaskResultMemory, AllocatesTheMaskAlone) {
    EXPECT_EQ(RequestsOf([] { return TypeParam::Create(7, 3); },
                         [](typename TypeParam::Result result) { TypeParam::Destroy(&result); }),
              (Sizes{16, 21}));
}

TYPED_TEST(MaskResultMemory, RefusesANegativeSize) {
    ExpectRefused([] { TypeParam::Create(kWrapsNegative, kWrapsNegative); });
}

TYPED_TEST(MaskResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { TypeParam::Create(7, 3); });
}

TYPED_TEST(MaskResultMemory, ReleasesItsMaskAndSetsItToNull) {
    const std::size_t live = LiveBlocks();
    auto result = TypeParam::Create(7, 3);
    TypeParam::Destroy(&result);
    EXPECT_EQ(TypeParam::MaskOf(result), nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TYPED_TEST(MaskResultMemory, ReleasesNothingWithoutAMask) {
    typename TypeParam::Result result{};
    const std::size_t live = LiveBlocks();
    TypeParam::Destroy(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TYPED_TEST(MaskResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    TypeParam::Destroy(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- ContourResult

TEST(ContourResultMemory, HasStatusZeroAndAContour) {
    ContourResult result = CreateContourResult(5);
    EXPECT_EQ(result.Status, 0);
    ASSERT_NE(result.Contour, nullptr);
    EXPECT_EQ(result.Contour->Count, 5);
    EXPECT_EQ(result.Contour->Area, 0.0F);
    EXPECT_EQ(result.Contour->Perimeter, 0.0F);
    DestroyContourResult(&result);
}

/// The two registers in which the record comes back: a copy of it in C++ need not keep the padding.
struct Registers {
    int64_t statusAndPadding;
    Contour* contour;
};

// The type is not that of the function, as the sanitizer of undefined behaviour would say.
__attribute__((no_sanitize("undefined"))) Registers CreateInRegisters(int count) {
    using Create = Registers (*)(int);
    return reinterpret_cast<Create>(reinterpret_cast<void*>(&CreateContourResult))(count);
}

TEST(ContourResultMemory, HasZeroPadding) {
    Registers result = CreateInRegisters(5);
    EXPECT_EQ(result.statusAndPadding, 0);
    DestroyContour(result.contour);
}

TEST(ContourResultMemory, AllocatesTheContourAlone) {
    EXPECT_EQ(
        RequestsOf([] { return CreateContourResult(5); }, [](ContourResult result) { DestroyContourResult(&result); }),
        (Sizes{24, 40}));
}

TEST(ContourResultMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateContourResult(-5); });
}

TEST(ContourResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateContourResult(5); });
}

TEST(ContourResultMemory, ReleasesItsContourAndSetsItToNull) {
    const std::size_t live = LiveBlocks();
    ContourResult result = CreateContourResult(5);
    DestroyContourResult(&result);
    EXPECT_EQ(result.Contour, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ContourResultMemory, ReleasesNothingWithoutAContour) {
    ContourResult result{};
    const std::size_t live = LiveBlocks();
    DestroyContourResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ContourResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    DestroyContourResult(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- ClassificationResult

void Release(ClassificationResult result) {
    ClassificationResult* reference = &result;
    DestroyClassificationResult(reference);
}

TEST(ClassificationResultMemory, HasStatusZeroAndItsCount) {
    const ClassificationResult result = CreateClassificationResult(3);
    EXPECT_EQ(result.Status, 0);
    EXPECT_EQ(result.Count, 3);
    Release(result);
}

TEST(ClassificationResultMemory, HasTwentyFourBytesPerResponse) {
    EXPECT_EQ(RequestsOf([] { return CreateClassificationResult(3); }, Release), Sizes{72});
}

TEST(ClassificationResultMemory, CanBeWrittenWhole) {
    const ClassificationResult result = CreateClassificationResult(3);
    FillWhole(result.Responses, 3);
    Release(result);
}

TEST(ClassificationResultMemory, HasNoArrayForCountZero) {
    AllocationLog log;
    const ClassificationResult result = CreateClassificationResult(0);
    EXPECT_EQ(log.Sizes(), Sizes{});
    EXPECT_EQ(result.Responses, nullptr);
    EXPECT_EQ(result.Count, 0);
    EXPECT_EQ(result.Status, 0);
}

TEST(ClassificationResultMemory, RefusesANegativeCount) {
    RelRect rect{};
    ExpectRefused([] { CreateClassificationResult(-1); });
    ExpectRefused([&rect] { CreateClassificationResult(-1, &rect); });
}

TEST(ClassificationResultMemory, RefusesMoreResponsesThanMemoryHolds) {
    ExpectRefused([] { CreateClassificationResult(std::numeric_limits<int>::max()); });
}

TEST(ClassificationResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(1, [] { CreateClassificationResult(3); });
}

TEST(ClassificationResultMemory, CopiesTheRectangles) {
    std::array<RelRect, 3> rects{{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}};
    const ClassificationResult result = CreateClassificationResult(3, rects.data());
    rects = {};
    ASSERT_EQ(result.Count, 3);
    for (int i = 0; i < 3; ++i) {
        const RelRect& rect = result.Responses[i].Rect;
        EXPECT_EQ(rect.X, static_cast<float>(4 * i + 1));
        EXPECT_EQ(rect.Y, static_cast<float>(4 * i + 2));
        EXPECT_EQ(rect.Width, static_cast<float>(4 * i + 3));
        EXPECT_EQ(rect.Height, static_cast<float>(4 * i + 4));
    }
    Release(result);
}

TEST(ClassificationResultMemory, LeavesTheWeightsUnset) {
    std::array<RelRect, 2> rects{};
    const ClassificationResult result = CreateClassificationResult(2, rects.data());
    std::array<unsigned char, sizeof(double)> fresh;
    fresh.fill(quarry::test::kFreshByte);
    for (int i = 0; i < 2; ++i) {
        std::array<unsigned char, sizeof(double)> weight;
        std::memcpy(weight.data(), &result.Responses[i].Weight, weight.size());
        EXPECT_EQ(weight, fresh) << "response " << i;
    }
    Release(result);
}

TEST(ClassificationResultMemory, NeedsNoRectanglesForCountZero) {
    const ClassificationResult result = CreateClassificationResult(0, nullptr);
    EXPECT_EQ(result.Responses, nullptr);
}

TEST(ClassificationResultMemory, RefusesNullRectangles) {
    const std::size_t live = LiveBlocks();
    EXPECT_THROW(CreateClassificationResult(3, nullptr), std::invalid_argument);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClassificationResultMemory, IsReleasedAndBothPointersSetToNull) {
    const std::size_t live = LiveBlocks();
    ClassificationResult result = CreateClassificationResult(3);
    ClassificationResult* reference = &result;
    DestroyClassificationResult(reference);
    EXPECT_EQ(reference, nullptr);
    EXPECT_EQ(result.Responses, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClassificationResultMemory, ChangesNothingButTheReferenceForCountZero) {
    ClassificationResult result = CreateClassificationResult(0);
    ClassificationResult* reference = &result;
    DestroyClassificationResult(reference);
    EXPECT_EQ(reference, nullptr);
    EXPECT_EQ(result.Status, 0);
    EXPECT_EQ(result.Count, 0);
    EXPECT_EQ(result.Responses, nullptr);
}

TEST(ClassificationResultMemory, KeepsAnArrayThatCountsNothing) {
    auto* const array = new Response[2];
    ClassificationResult result{0, 0, array};
    ClassificationResult* reference = &result;
    const std::size_t live = LiveBlocks();
    DestroyClassificationResult(reference);
    EXPECT_EQ(reference, nullptr);
    EXPECT_EQ(result.Responses, array);
    EXPECT_EQ(LiveBlocks(), live);
    delete[] array;
}

TEST(ClassificationResultMemory, IsReleasedForANegativeCount) {
    const std::size_t live = LiveBlocks();
    ClassificationResult result{0, -1, new Response[2]};
    ClassificationResult* reference = &result;
    DestroyClassificationResult(reference);
    EXPECT_EQ(result.Responses, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClassificationResultMemory, IsReleasedWithoutAnArray) {
    ClassificationResult result{0, 4, nullptr};
    ClassificationResult* reference = &result;
    const std::size_t live = LiveBlocks();
    DestroyClassificationResult(reference);
    EXPECT_EQ(reference, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClassificationResultMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<ClassificationResult>(DestroyClassificationResult);
}

// ---- KMeanResult

TEST(KMeanResultMemory, HasStatusZeroAndItsCount) {
    KMeanResult result = CreateKMeanResult(4);
    EXPECT_EQ(result.Status, 0);
    EXPECT_EQ(result.Count, 4);
    DestroyKMeanResult(&result);
}

TEST(KMeanResultMemory, HasTwelveBytesPerColour) {
    const auto release = [](KMeanResult result) { DestroyKMeanResult(&result); };
    EXPECT_EQ(RequestsOf([] { return CreateKMeanResult(4); }, release), Sizes{48});
    EXPECT_EQ(RequestsOf([] { return CreateKMeanResult(0); }, release), Sizes{0});
}

TEST(KMeanResultMemory, CanBeWrittenWhole) {
    KMeanResult result = CreateKMeanResult(4);
    FillWhole(result.Colors, 12);
    DestroyKMeanResult(&result);
}

TEST(KMeanResultMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateKMeanResult(-1); });
    ExpectRefused([] { CreateKMeanResult(std::numeric_limits<int>::min()); });
}

TEST(KMeanResultMemory, DoesNotWrapTheSizeOfManyColours) {
    // 12 x 357913942 bytes would be 8 in 32 bits.
    ExpectRefused([] { CreateKMeanResult(357913942); });
    // 3 x 1431655766 floats would be 2 in 32 bits.
    ExpectRefused([] { CreateKMeanResult(1431655766); });
}

TEST(KMeanResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(1, [] { CreateKMeanResult(4); });
}

TEST(KMeanResultMemory, ReleasesItsColoursAndSetsThemToNull) {
    const std::size_t live = LiveBlocks();
    KMeanResult result = CreateKMeanResult(4);
    DestroyKMeanResult(&result);
    EXPECT_EQ(result.Colors, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(KMeanResultMemory, ReleasesNothingWithoutColours) {
    KMeanResult result{};
    const std::size_t live = LiveBlocks();
    DestroyKMeanResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(KMeanResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    DestroyKMeanResult(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- ClustererResult

/// Releases the array of a result whose clusters were never given a contour.
void ReleaseBare(ClustererResult result) {
    std::memset(result.Clusters, 0, static_cast<std::size_t>(result.Count) * sizeof(Cluster));
    DestroyClustererResult(&result);
}

TEST(ClustererResultMemory, HasItsCount) {
    const ClustererResult result = CreateClustererResult(3);
    EXPECT_EQ(result.Count, 3);
    ASSERT_NE(result.Clusters, nullptr);
    ReleaseBare(result);
}

TEST(ClustererResultMemory, HasSixteenBytesPerClusterAndNoContours) {
    EXPECT_EQ(RequestsOf([] { return CreateClustererResult(3); }, ReleaseBare), Sizes{48});
    EXPECT_EQ(RequestsOf([] { return CreateClustererResult(0); }, ReleaseBare), Sizes{0});
}

TEST(ClustererResultMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateClustererResult(-1); });
}

TEST(ClustererResultMemory, RefusesMoreClustersThanMemoryHolds) {
    ExpectRefused([] { CreateClustererResult(std::numeric_limits<int>::max()); });
}

TEST(ClustererResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(1, [] { CreateClustererResult(3); });
}

TEST(ClustererResultMemory, ReleasesEveryContourAndItsArray) {
    const std::size_t live = LiveBlocks();
    ClustererResult result = CreateClustererResult(3);
    for (int i = 0; i < 3; ++i) result.Clusters[i] = {CreateContour(i), 0.5F, 0.5F};
    DestroyClustererResult(&result);
    EXPECT_EQ(result.Clusters, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClustererResultMemory, ReleasesClustersWithoutContours) {
    const std::size_t live = LiveBlocks();
    ClustererResult result = CreateClustererResult(2);
    result.Clusters[0] = {nullptr, 0.0F, 0.0F};
    result.Clusters[1] = {CreateContour(2), 0.0F, 0.0F};
    DestroyClustererResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClustererResultMemory, ReleasesTheArrayAloneForANegativeCount) {
    ClustererResult result = CreateClustererResult(1);
    Contour* contour = CreateContour(2);
    result.Clusters[0] = {contour, 0.0F, 0.0F};
    result.Count = -1;
    const std::size_t live = LiveBlocks();
    DestroyClustererResult(&result);
    EXPECT_EQ(result.Clusters, nullptr);
    EXPECT_EQ(LiveBlocks(), live - 1);
    DestroyContour(contour);
}

TEST(ClustererResultMemory, ReleasesNothingWithoutAnArray) {
    ClustererResult result{};
    result.Count = 5;
    const std::size_t live = LiveBlocks();
    DestroyClustererResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClustererResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    DestroyClustererResult(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- OFLineResult

TEST(OFLineResultMemory, HasItsCount) {
    OFLineResult result = CreateOFLineResult(10);
    EXPECT_EQ(result.ValuesCount, 10);
    DestroyOFLineResult(&result);
}

TEST(OFLineResultMemory, IsClearedToZero) {
    OFLineResult result = CreateOFLineResult(10);
    EXPECT_TRUE(AllZero(result.Values, 10));
    DestroyOFLineResult(&result);
}

TEST(OFLineResultMemory, HasFourBytesPerValue) {
    const auto release = [](OFLineResult result) { DestroyOFLineResult(&result); };
    EXPECT_EQ(RequestsOf([] { return CreateOFLineResult(10); }, release), Sizes{40});
    EXPECT_EQ(RequestsOf([] { return CreateOFLineResult(0); }, release), Sizes{0});
}

TEST(OFLineResultMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateOFLineResult(-1); });
}

TEST(OFLineResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(1, [] { CreateOFLineResult(10); });
}

TEST(OFLineResultMemory, ReleasesItsValuesAndSetsThemToNull) {
    const std::size_t live = LiveBlocks();
    OFLineResult result = CreateOFLineResult(10);
    DestroyOFLineResult(&result);
    EXPECT_EQ(result.Values, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(OFLineResultMemory, ReleasesNothingWithoutValues) {
    OFLineResult result{};
    const std::size_t live = LiveBlocks();
    DestroyOFLineResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(OFLineResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    DestroyOFLineResult(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- DepthMapCalcResult

TEST(DepthMapCalcResultMemory, HasStatusZeroAndAClearedImage) {
    DepthMapCalcResult result = CreateDepthMapCalcResult(3, 2);
    EXPECT_EQ(result.Status, 0);
    ASSERT_NE(result.DepthMap, nullptr);
    EXPECT_EQ(result.DepthMap->width, 3);
    EXPECT_EQ(result.DepthMap->height, 2);
    EXPECT_TRUE(AllZero(result.DepthMap->data, 6));
    DestroyDepthMapCalcResult(&result);
}

TEST(DepthMapCalcResultMemory, AllocatesTheImageAlone) {
    EXPECT_EQ(RequestsOf([] { return CreateDepthMapCalcResult(3, 2); },
                         [](DepthMapCalcResult result) { DestroyDepthMapCalcResult(&result); }),
              (Sizes{16, 24}));
}

TEST(DepthMapCalcResultMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateDepthMapCalcResult(kWrapsNegative, kWrapsNegative); });
}

TEST(DepthMapCalcResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateDepthMapCalcResult(3, 2); });
}

TEST(DepthMapCalcResultMemory, ReleasesItsImageAndSetsItToNull) {
    const std::size_t live = LiveBlocks();
    DepthMapCalcResult result = CreateDepthMapCalcResult(3, 2);
    DestroyDepthMapCalcResult(&result);
    EXPECT_EQ(result.DepthMap, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(DepthMapCalcResultMemory, ReleasesNothingWithoutAnImage) {
    DepthMapCalcResult result{};
    const std::size_t live = LiveBlocks();
    DestroyDepthMapCalcResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(DepthMapCalcResultMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    DestroyDepthMapCalcResult(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

}  // namespace
