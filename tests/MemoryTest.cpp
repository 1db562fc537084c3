#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <vector>

#include "Quarry/Memory.h"
#include "support/Allocations.h"

namespace {

using quarry::test::AllocationLog;
using quarry::test::FailingAllocation;
using quarry::test::LiveBlocks;

using Sizes = std::vector<std::size_t>;

/// The smallest side of a square whose area does not fit 31 bits: 46341 x 46341 wraps to a negative number.
constexpr int kWrapsNegative = 46341;
/// The side of a square whose area wraps to 0.
constexpr int kWrapsToZero = 65536;

/// Writes every byte of a buffer, for a sanitizer to see that they are there.
template <class Element>
void FillWhole(Element* buffer, std::size_t count) {
    std::memset(buffer, 0x6B, count * sizeof(Element));
}

template <class Element>
bool AllZero(const Element* buffer, std::size_t count) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(buffer);
    return std::all_of(bytes, bytes + count * sizeof(Element), [](unsigned char byte) { return byte == 0; });
}

/// Sizes of the blocks that a creation asks for, smallest first; `release` takes what `create` gave.
template <class Create, class Release>
Sizes RequestsOf(Create create, Release release) {
    AllocationLog log;
    auto created = create();
    Sizes sizes = log.Sizes();
    release(created);
    return sizes;
}

template <class Create>
bool ThrowsBadAlloc(Create create) {
    try {
        create();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

/// A creation that cannot succeed throws std::bad_alloc and keeps nothing.
template <class Create>
void ExpectRefused(Create create) {
    const std::size_t live = LiveBlocks();
    EXPECT_TRUE(ThrowsBadAlloc(create));
    EXPECT_EQ(LiveBlocks(), live);
}

/// When any of a creation's allocations fails, std::bad_alloc is thrown and those before it are released.
template <class Create>
void ExpectNothingKeptWhenMemoryEnds(std::size_t allocations, Create create) {
    for (std::size_t served = 0; served < allocations; ++served) {
        const std::size_t live = LiveBlocks();
        bool thrown = false;
        {
            const FailingAllocation failing(served);
            thrown = ThrowsBadAlloc(create);
        }
        EXPECT_TRUE(thrown) << "after " << served << " allocations";
        EXPECT_EQ(LiveBlocks(), live) << "after " << served << " allocations";
    }
}

/// A destruction through a reference sets it to null and releases everything.
template <class Record, class Destroy>
void ExpectReleasedThroughReference(Record* (*create)(), Destroy destroy) {
    const std::size_t live = LiveBlocks();
    Record* record = create();
    destroy(record);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

/// A destruction accepts a reference to null.
template <class Record, class Destroy>
void ExpectNullIsAccepted(Destroy destroy) {
    const std::size_t live = LiveBlocks();
    Record* record = nullptr;
    destroy(record);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- Image

TEST(ImageMemory, HoldsItsArguments) {
    Image* image = CreateImage(4, 2, 12, 0x8000000000000001U);
    EXPECT_EQ(image->width, 4);
    EXPECT_EQ(image->height, 2);
    EXPECT_EQ(image->stride, 12);
    EXPECT_EQ(image->timestamp, 0x8000000000000001U);
    DestroyImage(image);
}

TEST(ImageMemory, IsARecordAndHeightTimesStrideBytes) {
    const auto release = [](Image* image) { DestroyImage(image); };
    EXPECT_EQ(RequestsOf([] { return CreateImage(4, 2, 12, 0); }, release), (Sizes{24, 32}));
    EXPECT_EQ(RequestsOf([] { return CreateImage(4, 5, 100, 0); }, release), (Sizes{32, 500}));
}

TEST(ImageMemory, CanBeWrittenWhole) {
    Image* image = CreateImage(4, 5, 100, 0);
    FillWhole(image->data, 500);
    EXPECT_EQ(image->data[499], 0x6B);
    DestroyImage(image);
}

TEST(ImageMemory, TakesTheProductIn32Bits) {
    const auto release = [](Image* image) { DestroyImage(image); };
    EXPECT_EQ(RequestsOf([] { return CreateImage(1, kWrapsToZero, kWrapsToZero, 0); }, release), (Sizes{0, 32}));
    EXPECT_EQ(RequestsOf([] { return CreateImage(1, 65537, 65537, 0); }, release), (Sizes{32, 131073}));
}

TEST(ImageMemory, KeepsArgumentsWhoseProductWraps) {
    Image* image = CreateImage(-3, kWrapsToZero, kWrapsToZero, 0);
    EXPECT_EQ(image->width, -3);
    EXPECT_EQ(image->height, kWrapsToZero);
    EXPECT_EQ(image->stride, kWrapsToZero);
    EXPECT_NE(image->data, nullptr);
    DestroyImage(image);
}

TEST(ImageMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateImage(4, kWrapsNegative, kWrapsNegative, 0); });
    ExpectRefused([] { CreateImage(4, -1, 12, 0); });
    ExpectRefused([] { CreateImage(4, 2, -12, 0); });
}

TEST(ImageMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateImage(4, 2, 12, 0); });
}

TEST(ImageMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<Image>([] { return CreateImage(4, 2, 12, 0); }, DestroyImage);
}

TEST(ImageMemory, IsReleasedWithoutPixels) {
    ExpectReleasedThroughReference<Image>([] { return new Image{}; }, DestroyImage);
}

TEST(ImageMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<Image>(DestroyImage);
}

// ---- Mask

TEST(MaskMemory, HoldsItsArguments) {
    Mask* mask = CreateMask(7, 3);
    EXPECT_EQ(mask->width, 7);
    EXPECT_EQ(mask->height, 3);
    DestroyMask(mask);
}

TEST(MaskMemory, IsARecordAndWidthTimesHeightBytes) {
    EXPECT_EQ(RequestsOf([] { return CreateMask(7, 3); }, [](Mask* mask) { DestroyMask(mask); }), (Sizes{16, 21}));
}

TEST(MaskMemory, CanBeWrittenWhole) {
    Mask* mask = CreateMask(7, 3);
    FillWhole(mask->data, 21);
    EXPECT_EQ(mask->data[20], 0x6B);
    DestroyMask(mask);
}

TEST(MaskMemory, TakesTheProductIn32Bits) {
    EXPECT_EQ(RequestsOf([] { return CreateMask(kWrapsToZero, kWrapsToZero); }, [](Mask* mask) { DestroyMask(mask); }),
              (Sizes{0, 16}));
}

TEST(MaskMemory, KeepsArgumentsWhoseProductWraps) {
    Mask* mask = CreateMask(kWrapsToZero, kWrapsToZero);
    EXPECT_EQ(mask->width, kWrapsToZero);
    EXPECT_EQ(mask->height, kWrapsToZero);
    EXPECT_NE(mask->data, nullptr);
    DestroyMask(mask);
}

TEST(MaskMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateMask(kWrapsNegative, kWrapsNegative); });
    ExpectRefused([] { CreateMask(-1, 1); });
    ExpectRefused([] { CreateMask(1, std::numeric_limits<int>::min()); });
}

TEST(MaskMemory, AcceptsTwoNegativeSides) {
    EXPECT_EQ(RequestsOf([] { return CreateMask(-7, -3); }, [](Mask* mask) { DestroyMask(mask); }), (Sizes{16, 21}));
}

TEST(MaskMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateMask(7, 3); });
}

TEST(MaskMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<Mask>([] { return CreateMask(7, 3); }, DestroyMask);
}

TEST(MaskMemory, IsReleasedWithoutPixels) {
    ExpectReleasedThroughReference<Mask>([] { return new Mask{}; }, DestroyMask);
}

TEST(MaskMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<Mask>(DestroyMask);
}

// ---- Contour

TEST(ContourMemory, CountsItsPointsAndMeasuresNothing) {
    Contour* contour = CreateContour(6);
    EXPECT_EQ(contour->Count, 6);
    EXPECT_EQ(contour->Area, 0.0F);
    EXPECT_EQ(contour->Perimeter, 0.0F);
    DestroyContour(contour);
}

TEST(ContourMemory, IsARecordAndEightBytesPerPoint) {
    const auto release = [](Contour* contour) { DestroyContour(contour); };
    EXPECT_EQ(RequestsOf([] { return CreateContour(6); }, release), (Sizes{24, 48}));
    EXPECT_EQ(RequestsOf([] { return CreateContour(0); }, release), (Sizes{0, 24}));
}

TEST(ContourMemory, CanBeWrittenWhole) {
    Contour* contour = CreateContour(6);
    FillWhole(contour->Points, 6);
    DestroyContour(contour);
}

TEST(ContourMemory, HasAnArrayWithoutPoints) {
    Contour* contour = CreateContour(0);
    EXPECT_EQ(contour->Count, 0);
    EXPECT_NE(contour->Points, nullptr);
    DestroyContour(contour);
}

TEST(ContourMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateContour(-1); });
    ExpectRefused([] { CreateContour(std::numeric_limits<int>::min()); });
}

TEST(ContourMemory, RefusesMorePointsThanMemoryHolds) {
    ExpectRefused([] { CreateContour(std::numeric_limits<int>::max()); });
}

TEST(ContourMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateContour(6); });
}

TEST(ContourMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<Contour>([] { return CreateContour(6); }, DestroyContour);
}

TEST(ContourMemory, IsReleasedWithoutPoints) {
    ExpectReleasedThroughReference<Contour>([] { return new Contour{}; }, DestroyContour);
}

TEST(ContourMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<Contour>(DestroyContour);
}

// ---- RectArray

TEST(RectArrayMemory, IsARecordAndSixteenBytesPerRectangle) {
    const auto release = [](RectArray* array) { DestroyRectArray(array); };
    EXPECT_EQ(RequestsOf([] { return CreateRectArray(5); }, release), (Sizes{16, 80}));
    EXPECT_EQ(RequestsOf([] { return CreateRectArray(0); }, release), (Sizes{0, 16}));
}

TEST(RectArrayMemory, CountsItsRectanglesAndCanBeWrittenWhole) {
    RectArray* array = CreateRectArray(5);
    EXPECT_EQ(array->Count, 5);
    FillWhole(array->Rects, 5);
    DestroyRectArray(array);
}

TEST(RectArrayMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateRectArray(-1); });
}

TEST(RectArrayMemory, RefusesMoreRectanglesThanMemoryHolds) {
    ExpectRefused([] { CreateRectArray(std::numeric_limits<int>::max()); });
}

TEST(RectArrayMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateRectArray(5); });
}

TEST(RectArrayMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<RectArray>([] { return CreateRectArray(5); }, DestroyRectArray);
}

TEST(RectArrayMemory, IsReleasedWithoutRectangles) {
    ExpectReleasedThroughReference<RectArray>([] { return new RectArray{}; }, DestroyRectArray);
}

TEST(RectArrayMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<RectArray>(DestroyRectArray);
}

// ---- PointArray

TEST(PointArrayMemory, IsARecordAndEightBytesPerPoint) {
    const auto release = [](PointArray* array) { DestroyPointArray(array); };
    EXPECT_EQ(RequestsOf([] { return CreatePointArray(17); }, release), (Sizes{16, 136}));
    EXPECT_EQ(RequestsOf([] { return CreatePointArray(0); }, release), (Sizes{0, 16}));
}

TEST(PointArrayMemory, CountsItsPointsUnderBothNames) {
    PointArray* array = CreatePointArray(17);
    EXPECT_EQ(array->Count, 17);
    EXPECT_EQ(array->PointsCount, 17);
    DestroyPointArray(array);
}

TEST(PointArrayMemory, CanBeWrittenWhole) {
    PointArray* array = CreatePointArray(17);
    FillWhole(array->Points, 17);
    DestroyPointArray(array);
}

TEST(PointArrayMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreatePointArray(-1); });
}

TEST(PointArrayMemory, RefusesMorePointsThanMemoryHolds) {
    ExpectRefused([] { CreatePointArray(std::numeric_limits<int>::max()); });
}

TEST(PointArrayMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreatePointArray(17); });
}

TEST(PointArrayMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<PointArray>([] { return CreatePointArray(17); }, DestroyPointArray);
}

TEST(PointArrayMemory, IsReleasedWithoutPoints) {
    ExpectReleasedThroughReference<PointArray>([] { return new PointArray{}; }, DestroyPointArray);
}

TEST(PointArrayMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<PointArray>(DestroyPointArray);
}

// ---- FloatImage

TEST(FloatImageMemory, HoldsItsArguments) {
    FloatImage* image = CreateFloatImage(3, 2);
    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
    DestroyFloatImage(image);
}

TEST(FloatImageMemory, IsClearedToZero) {
    FloatImage* image = CreateFloatImage(3, 2);
    EXPECT_TRUE(AllZero(image->data, 6));
    DestroyFloatImage(image);
}

TEST(FloatImageMemory, IsARecordAndFourBytesPerPixel) {
    EXPECT_EQ(RequestsOf([] { return CreateFloatImage(3, 2); }, [](FloatImage* image) { DestroyFloatImage(image); }),
              (Sizes{16, 24}));
}

TEST(FloatImageMemory, TakesTheProductIn32Bits) {
    EXPECT_EQ(RequestsOf([] { return CreateFloatImage(kWrapsToZero, kWrapsToZero); },
                         [](FloatImage* image) { DestroyFloatImage(image); }),
              (Sizes{0, 16}));
}

TEST(FloatImageMemory, KeepsArgumentsWhoseProductWraps) {
    FloatImage* image = CreateFloatImage(kWrapsToZero, kWrapsToZero);
    EXPECT_EQ(image->width, kWrapsToZero);
    EXPECT_EQ(image->height, kWrapsToZero);
    DestroyFloatImage(image);
}

TEST(FloatImageMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateFloatImage(kWrapsNegative, kWrapsNegative); });
    ExpectRefused([] { CreateFloatImage(3, -2); });
}

TEST(FloatImageMemory, RefusesMorePixelsThanMemoryHolds) {
    ExpectRefused([] { CreateFloatImage(std::numeric_limits<int>::max(), 1); });
}

TEST(FloatImageMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateFloatImage(3, 2); });
}

TEST(FloatImageMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<FloatImage>([] { return CreateFloatImage(3, 2); }, DestroyFloatImage);
}

TEST(FloatImageMemory, IsReleasedWithoutPixels) {
    ExpectReleasedThroughReference<FloatImage>([] { return new FloatImage{}; }, DestroyFloatImage);
}

TEST(FloatImageMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<FloatImage>(DestroyFloatImage);
}

// ---- AbsVectorMatrix

TEST(AbsVectorMatrixMemory, HoldsItsArguments) {
    AbsVectorMatrix* matrix = CreateAbsVectorMatrix(5, 4);
    EXPECT_EQ(matrix->width, 5);
    EXPECT_EQ(matrix->height, 4);
    DestroyAbsVectorMatrix(matrix);
}

TEST(AbsVectorMatrixMemory, IsClearedToZero) {
    AbsVectorMatrix* matrix = CreateAbsVectorMatrix(5, 4);
    EXPECT_TRUE(AllZero(matrix->data, 20));
    DestroyAbsVectorMatrix(matrix);
}

TEST(AbsVectorMatrixMemory, IsARecordAndEightBytesPerPixel) {
    const auto release = [](AbsVectorMatrix* matrix) { DestroyAbsVectorMatrix(matrix); };
    EXPECT_EQ(RequestsOf([] { return CreateAbsVectorMatrix(5, 4); }, release), (Sizes{16, 160}));
}

TEST(AbsVectorMatrixMemory, TakesTheProductIn32Bits) {
    EXPECT_EQ(RequestsOf([] { return CreateAbsVectorMatrix(kWrapsToZero, kWrapsToZero); },
                         [](AbsVectorMatrix* matrix) { DestroyAbsVectorMatrix(matrix); }),
              (Sizes{0, 16}));
}

TEST(AbsVectorMatrixMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateAbsVectorMatrix(kWrapsNegative, kWrapsNegative); });
    ExpectRefused([] { CreateAbsVectorMatrix(-5, 4); });
}

TEST(AbsVectorMatrixMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(2, [] { CreateAbsVectorMatrix(5, 4); });
}

TEST(AbsVectorMatrixMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<AbsVectorMatrix>([] { return CreateAbsVectorMatrix(5, 4); }, DestroyAbsVectorMatrix);
}

TEST(AbsVectorMatrixMemory, IsReleasedWithoutData) {
    ExpectReleasedThroughReference<AbsVectorMatrix>([] { return new AbsVectorMatrix{}; }, DestroyAbsVectorMatrix);
}

TEST(AbsVectorMatrixMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<AbsVectorMatrix>(DestroyAbsVectorMatrix);
}

// ---- Cluster

/// Releases a cluster that stands alone, as the tests make it.
void ReleaseWhole(Cluster* cluster) {
    Cluster* kept = cluster;
    DestroyCluster(kept);
    delete cluster;
}

TEST(ClusterMemory, HasItsCentreAtTheOrigin) {
    Cluster* const cluster = CreateCluster(3);
    EXPECT_EQ(cluster->CenterX, 0.0F);
    EXPECT_EQ(cluster->CenterY, 0.0F);
    ReleaseWhole(cluster);
}

TEST(ClusterMemory, HasAContourOfItsCount) {
    Cluster* const cluster = CreateCluster(3);
    ASSERT_NE(cluster->Contour, nullptr);
    EXPECT_EQ(cluster->Contour->Count, 3);
    EXPECT_EQ(cluster->Contour->Area, 0.0F);
    FillWhole(cluster->Contour->Points, 3);
    ReleaseWhole(cluster);
}

TEST(ClusterMemory, IsARecordAndAContour) {
    EXPECT_EQ(RequestsOf([] { return CreateCluster(4); }, ReleaseWhole), (Sizes{16, 24, 32}));
}

TEST(ClusterMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateCluster(-1); });
}

TEST(ClusterMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(3, [] { CreateCluster(4); });
}

TEST(ClusterMemory, KeepsItsRecordWhenItIsDestroyed) {
    Cluster* const cluster = CreateCluster(3);
    cluster->CenterX = 0.5F;
    Cluster* reference = cluster;
    const std::size_t live = LiveBlocks();
    DestroyCluster(reference);
    EXPECT_EQ(reference, cluster);
    EXPECT_EQ(cluster->CenterX, 0.5F);
    EXPECT_EQ(LiveBlocks(), live - 2) << "the contour and its points are gone";
    delete cluster;
}

TEST(ClusterMemory, LosesItsContourWhenItIsDestroyed) {
    Cluster cluster{CreateContour(3), 0.0F, 0.0F};
    Cluster* reference = &cluster;
    DestroyCluster(reference);
    EXPECT_EQ(cluster.Contour, nullptr);
}

TEST(ClusterMemory, CanBeDestroyedTwice) {
    Cluster cluster{CreateContour(3), 0.0F, 0.0F};
    Cluster* reference = &cluster;
    DestroyCluster(reference);
    const std::size_t live = LiveBlocks();
    DestroyCluster(reference);
    EXPECT_EQ(reference, &cluster);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClusterMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<Cluster>(DestroyCluster);
}

// ---- Response

TEST(ResponseMemory, StoresItsLastTwoFloatsCrosswise) {
    Response response;
    std::memset(&response, 0xAB, sizeof(response));
    CreateResponse(1, 2, 3, 4, 0.5, &response);
    EXPECT_EQ(response.Rect.X, 1.0F);
    EXPECT_EQ(response.Rect.Y, 2.0F);
    EXPECT_EQ(response.Rect.Width, 4.0F);
    EXPECT_EQ(response.Rect.Height, 3.0F);
}

TEST(ResponseMemory, StoresTheThirdFloatLast) {
    Response response{};
    CreateResponse(1, 2, 3, 4, 0.5, &response);
    float last = 0;
    std::memcpy(&last, reinterpret_cast<char*>(&response) + 20, sizeof(last));
    EXPECT_EQ(last, 3.0F);
}

TEST(ResponseMemory, StoresItsWeight) {
    Response response{};
    CreateResponse(1, 2, 3, 4, 0.5, &response);
    EXPECT_EQ(response.Weight, 0.5);
}

TEST(ResponseMemory, AllocatesNothing) {
    Response response{};
    AllocationLog log;
    CreateResponse(1, 2, 3, 4, 0.5, &response);
    EXPECT_EQ(log.Sizes(), Sizes{});
}

TEST(ResponseMemory, RefusesNullToFill) {
    EXPECT_THROW(CreateResponse(1, 2, 3, 4, 0.5, nullptr), std::invalid_argument);
}

TEST(ResponseMemory, IsReleased) {
    const std::size_t live = LiveBlocks();
    DestroyResponse(new Response);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ResponseMemory, IsNotThereForNull) {
    const std::size_t live = LiveBlocks();
    DestroyResponse(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

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

TEST(ContourResultMemory, HasZeroPadding) {
    // The two registers in which the record comes back: a copy of it in C++ need not keep the padding.
    struct Registers {
        int64_t statusAndPadding;
        Contour* contour;
    };
    using CreateInRegisters = Registers (*)(int);
    const auto create = reinterpret_cast<CreateInRegisters>(reinterpret_cast<void*>(&CreateContourResult));
    Registers result = create(5);
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

// ---- BackgroundResult

TEST(BackgroundResultMemory, HasStatusZero) {
    BackgroundResult* result = CreateBackgroundResult(4, 2, 12, 5);
    EXPECT_EQ(result->Status, 0);
    DestroyBackgroundResult(result);
}

TEST(BackgroundResultMemory, HasAMaskByteForEveryPixel) {
    BackgroundResult* result = CreateBackgroundResult(4, 2, 12, 5);
    FillWhole(result->ForegroundMask, 8);
    DestroyBackgroundResult(result);
}

TEST(BackgroundResultMemory, HasTwoImagesOfTheArguments) {
    BackgroundResult* result = CreateBackgroundResult(4, 2, 12, 5);
    ASSERT_NE(result->BackgroundImage, result->ReservedImage);
    for (const Image* const image : {result->BackgroundImage, result->ReservedImage}) {
        EXPECT_EQ(image->width, 4);
        EXPECT_EQ(image->height, 2);
        EXPECT_EQ(image->stride, 12);
        EXPECT_EQ(image->timestamp, 5U);
        FillWhole(image->data, 24);
    }
    DestroyBackgroundResult(result);
}

TEST(BackgroundResultMemory, IsARecordAMaskAndTwoImages) {
    EXPECT_EQ(RequestsOf([] { return CreateBackgroundResult(4, 2, 13, 0); },
                         [](BackgroundResult* result) { DestroyBackgroundResult(result); }),
              (Sizes{8, 26, 26, 32, 32, 32}));
}

TEST(BackgroundResultMemory, TakesTheProductsIn32Bits) {
    EXPECT_EQ(RequestsOf([] { return CreateBackgroundResult(kWrapsToZero, kWrapsToZero, kWrapsToZero, 0); },
                         [](BackgroundResult* result) { DestroyBackgroundResult(result); }),
              (Sizes{0, 0, 0, 32, 32, 32}));
}

TEST(BackgroundResultMemory, RefusesANegativeMask) {
    ExpectRefused([] { CreateBackgroundResult(kWrapsNegative, kWrapsNegative, 0, 0); });
}

TEST(BackgroundResultMemory, RefusesANegativeImage) {
    ExpectRefused([] { CreateBackgroundResult(1, 2, -3, 0); });
}

TEST(BackgroundResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(6, [] { CreateBackgroundResult(4, 2, 12, 0); });
}

TEST(BackgroundResultMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<BackgroundResult>([] { return CreateBackgroundResult(4, 2, 12, 0); },
                                                     DestroyBackgroundResult);
}

TEST(BackgroundResultMemory, IsReleasedWithoutBuffers) {
    ExpectReleasedThroughReference<BackgroundResult>([] { return new BackgroundResult{}; }, DestroyBackgroundResult);
}

TEST(BackgroundResultMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<BackgroundResult>(DestroyBackgroundResult);
}

// ---- OFCResult

TEST(OFCResultMemory, HasStatusZeroAndAClearedMatrix) {
    OFCResult* result = CreateOFCResult(5, 4);
    EXPECT_EQ(result->Status, 0);
    ASSERT_NE(result->FlowMatrix, nullptr);
    EXPECT_EQ(result->FlowMatrix->width, 5);
    EXPECT_EQ(result->FlowMatrix->height, 4);
    EXPECT_TRUE(AllZero(result->FlowMatrix->data, 20));
    DestroyOFCResult(result);
}

TEST(OFCResultMemory, IsARecordAndAMatrix) {
    EXPECT_EQ(RequestsOf([] { return CreateOFCResult(5, 4); }, [](OFCResult* result) { DestroyOFCResult(result); }),
              (Sizes{16, 16, 160}));
}

TEST(OFCResultMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateOFCResult(kWrapsNegative, kWrapsNegative); });
}

TEST(OFCResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(3, [] { CreateOFCResult(5, 4); });
}

TEST(OFCResultMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<OFCResult>([] { return CreateOFCResult(5, 4); }, DestroyOFCResult);
}

TEST(OFCResultMemory, IsReleasedWithoutAMatrix) {
    ExpectReleasedThroughReference<OFCResult>([] { return new OFCResult{}; }, DestroyOFCResult);
}

TEST(OFCResultMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<OFCResult>(DestroyOFCResult);
}

// ---- FloatImageUpdaterResult

TEST(FloatImageUpdaterResultMemory, HasStatusZeroAndAClearedImage) {
    FloatImageUpdaterResult* result = CreateFloatImageUpdaterResult(3, 2);
    EXPECT_EQ(result->Status, 0);
    ASSERT_NE(result->Image, nullptr);
    EXPECT_EQ(result->Image->width, 3);
    EXPECT_EQ(result->Image->height, 2);
    EXPECT_TRUE(AllZero(result->Image->data, 6));
    DestroyFloatImageUpdaterResult(result);
}

TEST(FloatImageUpdaterResultMemory, IsARecordAndAnImage) {
    EXPECT_EQ(RequestsOf([] { return CreateFloatImageUpdaterResult(3, 2); },
                         [](FloatImageUpdaterResult* result) { DestroyFloatImageUpdaterResult(result); }),
              (Sizes{16, 16, 24}));
}

TEST(FloatImageUpdaterResultMemory, RefusesANegativeSize) {
    ExpectRefused([] { CreateFloatImageUpdaterResult(kWrapsNegative, kWrapsNegative); });
}

TEST(FloatImageUpdaterResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(3, [] { CreateFloatImageUpdaterResult(3, 2); });
}

TEST(FloatImageUpdaterResultMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<FloatImageUpdaterResult>([] { return CreateFloatImageUpdaterResult(3, 2); },
                                                            DestroyFloatImageUpdaterResult);
}

TEST(FloatImageUpdaterResultMemory, IsReleasedWithoutAnImage) {
    ExpectReleasedThroughReference<FloatImageUpdaterResult>([] { return new FloatImageUpdaterResult{}; },
                                                            DestroyFloatImageUpdaterResult);
}

TEST(FloatImageUpdaterResultMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<FloatImageUpdaterResult>(DestroyFloatImageUpdaterResult);
}

// ---- SODResult

TEST(SODResultMemory, HasStatusZeroAndItsCount) {
    SODResult* result = CreateSODResult(7, 3, 5);
    EXPECT_EQ(result->Status, 0);
    EXPECT_EQ(result->Count, 5);
    DestroySODResult(result);
}

TEST(SODResultMemory, HasPointsAndAMask) {
    SODResult* result = CreateSODResult(7, 3, 5);
    FillWhole(result->Points, 5);
    ASSERT_NE(result->Mask, nullptr);
    EXPECT_EQ(result->Mask->width, 7);
    EXPECT_EQ(result->Mask->height, 3);
    FillWhole(result->Mask->data, 21);
    DestroySODResult(result);
}

TEST(SODResultMemory, IsARecordEightBytesPerPointAndAMask) {
    EXPECT_EQ(RequestsOf([] { return CreateSODResult(7, 3, 5); }, [](SODResult* result) { DestroySODResult(result); }),
              (Sizes{16, 21, 32, 40}));
}

TEST(SODResultMemory, RefusesANegativeCount) {
    ExpectRefused([] { CreateSODResult(7, 3, -1); });
}

TEST(SODResultMemory, RefusesANegativeMask) {
    ExpectRefused([] { CreateSODResult(kWrapsNegative, kWrapsNegative, 5); });
}

TEST(SODResultMemory, KeepsNothingWhenMemoryEnds) {
    ExpectNothingKeptWhenMemoryEnds(4, [] { CreateSODResult(7, 3, 5); });
}

TEST(SODResultMemory, IsReleasedAndItsPointerSetToNull) {
    ExpectReleasedThroughReference<SODResult>([] { return CreateSODResult(7, 3, 5); }, DestroySODResult);
}

TEST(SODResultMemory, IsReleasedWithoutBuffers) {
    ExpectReleasedThroughReference<SODResult>([] { return new SODResult{}; }, DestroySODResult);
}

TEST(SODResultMemory, IsNotThereForNull) {
    ExpectNullIsAccepted<SODResult>(DestroySODResult);
}

}  // namespace
