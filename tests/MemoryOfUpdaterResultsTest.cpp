#include <gtest/gtest.h>

#include "Quarry/Memory.h"
#include "support/Allocations.h"
#include "support/MemoryChecks.h"

namespace {

using namespace quarry::test;

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
