#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <stdexcept>

#include "Quarry/Memory.h"
#include "support/Allocations.h"
#include "support/MemoryChecks.h"

namespace {

using namespace quarry::test;

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

}  // namespace
