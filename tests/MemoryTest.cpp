// The functions that create and destroy records.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Quarry/Memory.h"
#include "support/Allocations.h"

namespace {

using namespace quarry::test;

using Sizes = std::vector<std::size_t>;

constexpr int kLargest = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();
/// The smallest side of a square whose area does not fit 31 bits: 46341 x 46341 wraps to a negative number.
constexpr int kWrapsNegative = 46341;
/// The side of a square whose area wraps to 0.
constexpr int kWrapsToZero = 65536;

/// Writes every byte of a buffer, for a sanitizer to see that they are there.
template <class Element>
bool CanBeFilled(Element* buffer, std::size_t count) {
    std::memset(buffer, 0x6B, count * sizeof(Element));
    return true;
}

template <class Element>
bool AllZero(const Element* buffer, std::size_t count) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(buffer);
    return std::all_of(bytes, bytes + count * sizeof(Element), [](unsigned char byte) { return byte == 0; });
}

/// As the library takes products: in 32 bits.
std::size_t Product(int a, int b) {
    return static_cast<uint32_t>(a) * static_cast<uint32_t>(b);
}

bool IsImage(const Image* image, int width, int height, int stride, uint64_t timestamp) {
    return image->width == width && image->height == height && image->stride == stride &&
           image->timestamp == timestamp && image->data != nullptr && CanBeFilled(image->data, Product(height, stride));
}
bool IsMask(const Mask* mask, int width, int height) {
    return mask->width == width && mask->height == height && mask->data != nullptr &&
           CanBeFilled(mask->data, Product(width, height));
}
bool IsContour(const Contour* contour, int count) {
    return contour->Count == count && contour->Area == 0 && contour->Perimeter == 0 && contour->Points != nullptr &&
           CanBeFilled(contour->Points, static_cast<std::size_t>(count));
}
/// A float image or a motion field, cleared.
template <class Field>
bool IsCleared(const Field* field, int width, int height) {
    return field->width == width && field->height == height && field->data != nullptr &&
           AllZero(field->data, Product(width, height));
}

/// The call that creates a record, with all that is the same for each of them.
struct Creation {
    std::string call;
    Sizes blocks;                        ///< that it asks for, smallest first
    std::function<bool()> isRight;       ///< whether the new record holds what it should; released again
    std::function<void()> leave;         ///< creates a record and leaves it
    std::function<void()> come;          ///< creates one and destroys it; checks that its pointer is forgotten
    std::function<void()> destroyEmpty;  ///< destroys a record without buffers
    std::function<void()> destroyNull;
};
void PrintTo(const Creation& creation, std::ostream* out) {
    *out << creation.call;
}

template <class Record>
using Predicate = std::enable_if_t<true, bool (*)(const Record&)>;  // not what the record's type is deduced from

/// Of a function that returns a pointer; its end sets the pointer to null.
template <class Record, class Create>
Creation Creates(const char* call, Create create, void (*destroy)(Record*&), Sizes blocks, Predicate<Record> isRight) {
    return {call,
            std::move(blocks),
            [=] {
                Record* record = create();
                const bool right = isRight(*record);
                destroy(record);
                return right;
            },
            [=] { create(); },
            [=] {
                Record* record = create();
                destroy(record);
                EXPECT_EQ(record, nullptr);
            },
            [=] {
                auto* empty = new Record{};
                destroy(empty);
                EXPECT_EQ(empty, nullptr);
            },
            [=] {
                Record* null = nullptr;
                destroy(null);
                EXPECT_EQ(null, nullptr);
            }};
}

/// Of a function that returns a record by value; its end sets the record's pointer to null.
template <class Record, class Create, class Buffer>
Creation Creates(const char* call, Create create, void (*destroy)(Record*), Buffer* Record::*buffer, Sizes blocks,
                 Predicate<Record> isRight) {
    return {call,
            std::move(blocks),
            [=] {
                Record record = create();
                const bool right = isRight(record);
                destroy(&record);
                return right;
            },
            [=] { create(); },
            [=] {
                Record record = create();
                destroy(&record);
                EXPECT_EQ(record.*buffer, nullptr);
            },
            [=] {
                Record empty{};
                destroy(&empty);
                EXPECT_EQ(empty.*buffer, nullptr);
            },
            [=] { destroy(nullptr); }};
}

/// The end of detections takes a reference to a pointer to a record that stays where it is.
void EndDetections(ClassificationResult* result) {
    ClassificationResult* reference = result;
    DestroyClassificationResult(reference);
    EXPECT_EQ(reference, nullptr);
}

/// A result whose clusters have no contours yet.
ClustererResult CreateBareClusters(int count) {
    const ClustererResult result = CreateClustererResult(count);
    std::memset(result.Clusters, 0, static_cast<std::size_t>(count) * sizeof(Cluster));
    return result;
}

#define CREATES(call, ...) \
    Creates(               \
        #call, [] { return call; }, __VA_ARGS__)

const Creation kCreations[] = {
    CREATES(CreateImage(4, 2, 12, 0x8000000000000001U), DestroyImage, {24, 32},
            [](const Image& image) { return IsImage(&image, 4, 2, 12, 0x8000000000000001U); }),
    CREATES(CreateImage(4, 5, 100, 0), DestroyImage, {32, 500},
            [](const Image& image) { return IsImage(&image, 4, 5, 100, 0); }),
    CREATES(CreateImage(-3, kWrapsToZero, kWrapsToZero, 0), DestroyImage, {0, 32},
            [](const Image& image) { return IsImage(&image, -3, kWrapsToZero, kWrapsToZero, 0); }),
    CREATES(CreateImage(1, 65537, 65537, 0), DestroyImage, {32, 131073},
            [](const Image& image) { return IsImage(&image, 1, 65537, 65537, 0); }),
    CREATES(CreateMask(7, 3), DestroyMask, {16, 21}, [](const Mask& mask) { return IsMask(&mask, 7, 3); }),
    CREATES(CreateMask(-7, -3), DestroyMask, {16, 21}, [](const Mask& mask) { return IsMask(&mask, -7, -3); }),
    CREATES(CreateMask(kWrapsToZero, kWrapsToZero), DestroyMask, {0, 16},
            [](const Mask& mask) { return IsMask(&mask, kWrapsToZero, kWrapsToZero); }),
    CREATES(CreateContour(6), DestroyContour, {24, 48}, [](const Contour& contour) { return IsContour(&contour, 6); }),
    CREATES(CreateContour(0), DestroyContour, {0, 24}, [](const Contour& contour) { return IsContour(&contour, 0); }),
    CREATES(CreateRectArray(5), DestroyRectArray, {16, 80},
            [](const RectArray& array) { return array.Count == 5 && CanBeFilled(array.Rects, 5); }),
    CREATES(CreateRectArray(0), DestroyRectArray, {0, 16}, [](const RectArray& array) { return array.Count == 0; }),
    CREATES(CreatePointArray(17), DestroyPointArray, {16, 136},
            [](const PointArray& array) {
                return array.Count == 17 && array.PointsCount == 17 && CanBeFilled(array.Points, 17);
            }),
    CREATES(CreatePointArray(0), DestroyPointArray, {0, 16}, [](const PointArray& array) { return array.Count == 0; }),
    CREATES(CreateFloatImage(3, 2), DestroyFloatImage, {16, 24},
            [](const FloatImage& image) { return IsCleared(&image, 3, 2); }),
    CREATES(CreateFloatImage(kWrapsToZero, kWrapsToZero), DestroyFloatImage, {0, 16},
            [](const FloatImage& image) { return IsCleared(&image, kWrapsToZero, kWrapsToZero); }),
    CREATES(CreateAbsVectorMatrix(5, 4), DestroyAbsVectorMatrix, {16, 160},
            [](const AbsVectorMatrix& matrix) { return IsCleared(&matrix, 5, 4); }),
    CREATES(CreateAbsVectorMatrix(kWrapsToZero, kWrapsToZero), DestroyAbsVectorMatrix, {0, 16},
            [](const AbsVectorMatrix& matrix) { return IsCleared(&matrix, kWrapsToZero, kWrapsToZero); }),

    CREATES(
        CreateImageOperationResult(4, 5, 100, 99), DestroyImageOperationResult, &ImageOperationResult::Image, {32, 500},
        [](const ImageOperationResult& result) { return result.Status == 0 && IsImage(result.Image, 4, 5, 100, 99); }),
    CREATES(CreateFilterResult(4, 5, 100, 99), DestroyFilterResult, &FilterResult::Image, {32, 500},
            [](const FilterResult& result) { return result.Status == 0 && IsImage(result.Image, 4, 5, 100, 99); }),
    CREATES(
        CreateTransformResult(4, 5, 100, 99), DestroyTransformResult, &TransformResult::ResultImage, {32, 500},
        [](const TransformResult& result) { return result.Status == 0 && IsImage(result.ResultImage, 4, 5, 100, 99); }),
    CREATES(
        CreateRectExtractorResult(4, 5, 100, 99), DestroyRectExtractorResult, &RectExtractorResult::Image, {32, 500},
        [](const RectExtractorResult& result) { return result.Status == 0 && IsImage(result.Image, 4, 5, 100, 99); }),
    CREATES(CreateContourMaskProcessorResult(7, 3), DestroyContourMaskProcessorResult,
            &ContourMaskProcessorResult::Mask, {16, 21},
            [](const ContourMaskProcessorResult& result) { return result.Status == 0 && IsMask(result.Mask, 7, 3); }),
    CREATES(CreateFireOutputData(7, 3), DestroyFireOutputData, &FireOutputData::FireMask, {16, 21},
            [](const FireOutputData& result) { return result.Status == 0 && IsMask(result.FireMask, 7, 3); }),
    CREATES(CreateContourResult(5), DestroyContourResult, &ContourResult::Contour, {24, 40},
            [](const ContourResult& result) { return result.Status == 0 && IsContour(result.Contour, 5); }),
    CREATES(CreateClassificationResult(3), EndDetections, &ClassificationResult::Responses, {72},
            [](const ClassificationResult& result) {
                return result.Status == 0 && result.Count == 3 && CanBeFilled(result.Responses, 3);
            }),
    CREATES(CreateClassificationResult(0), EndDetections, &ClassificationResult::Responses, {},
            [](const ClassificationResult& result) {
                return result.Status == 0 && result.Count == 0 && result.Responses == nullptr;
            }),
    CREATES(CreateKMeanResult(4), DestroyKMeanResult, &KMeanResult::Colors, {48},
            [](const KMeanResult& result) {
                return result.Status == 0 && result.Count == 4 && CanBeFilled(result.Colors, 12);
            }),
    CREATES(CreateKMeanResult(0), DestroyKMeanResult, &KMeanResult::Colors, {0},
            [](const KMeanResult& result) { return result.Status == 0 && result.Count == 0; }),
    CREATES(CreateBareClusters(3), DestroyClustererResult, &ClustererResult::Clusters, {48},
            [](const ClustererResult& result) { return result.Count == 3 && result.Clusters != nullptr; }),
    CREATES(CreateBareClusters(0), DestroyClustererResult, &ClustererResult::Clusters, {0},
            [](const ClustererResult& result) { return result.Count == 0; }),
    CREATES(CreateOFLineResult(10), DestroyOFLineResult, &OFLineResult::Values, {40},
            [](const OFLineResult& result) { return result.ValuesCount == 10 && AllZero(result.Values, 10); }),
    CREATES(CreateOFLineResult(0), DestroyOFLineResult, &OFLineResult::Values, {0},
            [](const OFLineResult& result) { return result.ValuesCount == 0; }),
    CREATES(CreateDepthMapCalcResult(3, 2), DestroyDepthMapCalcResult, &DepthMapCalcResult::DepthMap, {16, 24},
            [](const DepthMapCalcResult& result) { return result.Status == 0 && IsCleared(result.DepthMap, 3, 2); }),

    CREATES(CreateBackgroundResult(4, 2, 13, 5), DestroyBackgroundResult, {8, 26, 26, 32, 32, 32},
            [](const BackgroundResult& result) {
                return result.Status == 0 && CanBeFilled(result.ForegroundMask, 8) &&
                       IsImage(result.BackgroundImage, 4, 2, 13, 5) && IsImage(result.ReservedImage, 4, 2, 13, 5) &&
                       result.BackgroundImage != result.ReservedImage;
            }),
    CREATES(CreateBackgroundResult(kWrapsToZero, kWrapsToZero, kWrapsToZero, 0), DestroyBackgroundResult,
            {0, 0, 0, 32, 32, 32}, [](const BackgroundResult& result) { return result.Status == 0; }),
    CREATES(CreateOFCResult(5, 4), DestroyOFCResult, {16, 16, 160},
            [](const OFCResult& result) { return result.Status == 0 && IsCleared(result.FlowMatrix, 5, 4); }),
    CREATES(CreateFloatImageUpdaterResult(3, 2), DestroyFloatImageUpdaterResult, {16, 16, 24},
            [](const FloatImageUpdaterResult& result) { return result.Status == 0 && IsCleared(result.Image, 3, 2); }),
    CREATES(CreateSODResult(7, 3, 5), DestroySODResult, {16, 21, 32, 40},
            [](const SODResult& result) {
                return result.Status == 0 && result.Count == 5 && CanBeFilled(result.Points, 5) &&
                       IsMask(result.Mask, 7, 3);
            }),
};

class MemoryOfRecords : public testing::TestWithParam<Creation> {};
INSTANTIATE_TEST_SUITE_P(All, MemoryOfRecords, testing::ValuesIn(kCreations));

TEST_P(MemoryOfRecords, HoldsWhatItWasAskedFor) {
    EXPECT_TRUE(GetParam().isRight());
}

TEST_P(MemoryOfRecords, IsTheBlocksOfTheRecordAndNoMore) {
    AllocationLog log;
    GetParam().come();
    EXPECT_EQ(log.Sizes(), GetParam().blocks);
}

TEST_P(MemoryOfRecords, IsReleasedWithTheRecord) {
    const std::size_t live = LiveBlocks();
    GetParam().come();
    GetParam().destroyEmpty();
    GetParam().destroyNull();
    EXPECT_EQ(LiveBlocks(), live);
}

TEST_P(MemoryOfRecords, IsNotKeptWhenMemoryEnds) {
    for (std::size_t served = 0; served < GetParam().blocks.size(); ++served) {
        SCOPED_TRACE(served);
        const std::size_t live = LiveBlocks();
        bool thrown = false;
        {
            const FailingAllocation failing(served);
            try {
                GetParam().leave();
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
        }
        EXPECT_TRUE(thrown);
        EXPECT_EQ(LiveBlocks(), live);
    }
}

#define CALL(call)          \
    {                       \
#call, [] { call; } \
    }

/// Calls that no memory can serve.
const struct {
    const char* text;
    void (*make)();
} kRefused[] = {
    CALL(CreateImage(4, kWrapsNegative, kWrapsNegative, 0)),
    CALL(CreateImage(4, -1, 12, 0)),
    CALL(CreateImage(4, 2, -12, 0)),
    CALL(CreateMask(kWrapsNegative, kWrapsNegative)),
    CALL(CreateMask(-1, 1)),
    CALL(CreateMask(1, kLowest)),
    CALL(CreateContour(-1)),
    CALL(CreateContour(kLowest)),
    CALL(CreateContour(kLargest)),
    CALL(CreateRectArray(-1)),
    CALL(CreateRectArray(kLargest)),
    CALL(CreatePointArray(-1)),
    CALL(CreatePointArray(kLargest)),
    CALL(CreateFloatImage(kWrapsNegative, kWrapsNegative)),
    CALL(CreateFloatImage(3, -2)),
    CALL(CreateFloatImage(kLargest, 1)),
    CALL(CreateAbsVectorMatrix(kWrapsNegative, kWrapsNegative)),
    CALL(CreateAbsVectorMatrix(-5, 4)),
    CALL(CreateCluster(-1)),
    CALL(CreateImageOperationResult(4, kWrapsNegative, kWrapsNegative, 0)),
    CALL(CreateFilterResult(4, kWrapsNegative, kWrapsNegative, 0)),
    CALL(CreateTransformResult(4, kWrapsNegative, kWrapsNegative, 0)),
    CALL(CreateRectExtractorResult(4, kWrapsNegative, kWrapsNegative, 0)),
    CALL(CreateContourMaskProcessorResult(kWrapsNegative, kWrapsNegative)),
    CALL(CreateFireOutputData(kWrapsNegative, kWrapsNegative)),
    CALL(CreateContourResult(-5)),
    CALL(CreateClassificationResult(-1)),
    CALL(RelRect rect{}; CreateClassificationResult(-1, &rect)),
    CALL(CreateClassificationResult(kLargest)),
    CALL(CreateKMeanResult(-1)),
    CALL(CreateKMeanResult(kLowest)),
    CALL(CreateKMeanResult(357913942)),   // 12 bytes each would be 8 in 32 bits
    CALL(CreateKMeanResult(1431655766)),  // three floats each would be 2 in 32 bits
    CALL(CreateClustererResult(-1)),
    CALL(CreateClustererResult(kLargest)),
    CALL(CreateOFLineResult(-1)),
    CALL(CreateDepthMapCalcResult(kWrapsNegative, kWrapsNegative)),
    CALL(CreateBackgroundResult(kWrapsNegative, kWrapsNegative, 0, 0)),
    CALL(CreateBackgroundResult(1, 2, -3, 0)),
    CALL(CreateOFCResult(kWrapsNegative, kWrapsNegative)),
    CALL(CreateFloatImageUpdaterResult(kWrapsNegative, kWrapsNegative)),
    CALL(CreateSODResult(7, 3, -1)),
    CALL(CreateSODResult(kWrapsNegative, kWrapsNegative, 5)),
};

TEST(Memory, IsNotGivenForSizesThatNoMemoryHolds) {
    for (const auto& refused : kRefused) {
        const std::size_t live = LiveBlocks();
        EXPECT_THROW(refused.make(), std::bad_alloc) << refused.text;
        EXPECT_EQ(LiveBlocks(), live) << refused.text;
    }
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

// ---- detections

TEST(ClassificationResultMemory, CopiesTheRectangles) {
    std::array<RelRect, 3> rects{{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}};
    const std::array<RelRect, 3> given = rects;
    ClassificationResult result = CreateClassificationResult(3, rects.data());
    rects = {};
    ASSERT_EQ(result.Count, 3);
    for (std::size_t i = 0; i < given.size(); ++i) {
        EXPECT_EQ(std::memcmp(&result.Responses[i].Rect, &given[i], sizeof(RelRect)), 0) << "response " << i;
    }
    EndDetections(&result);
}

TEST(ClassificationResultMemory, LeavesTheWeightsUnset) {
    std::array<RelRect, 2> rects{};
    ClassificationResult result = CreateClassificationResult(2, rects.data());
    for (int i = 0; i < 2; ++i) {
        const auto* const weight = reinterpret_cast<const unsigned char*>(&result.Responses[i].Weight);
        EXPECT_EQ(CountFresh(weight, sizeof(double)), static_cast<int>(sizeof(double))) << "response " << i;
    }
    EndDetections(&result);
}

TEST(ClassificationResultMemory, NeedsRectanglesForAnyCountButZero) {
    EXPECT_EQ(CreateClassificationResult(0, nullptr).Responses, nullptr);
    const std::size_t live = LiveBlocks();
    EXPECT_THROW(CreateClassificationResult(3, nullptr), std::invalid_argument);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClassificationResultMemory, KeepsAnArrayThatCountsNothing) {
    auto* const array = new Response[2];
    ClassificationResult result{0, 0, array};
    const std::size_t live = LiveBlocks();
    EndDetections(&result);
    EXPECT_EQ(result.Responses, array);
    EXPECT_EQ(LiveBlocks(), live);
    delete[] array;
}

TEST(ClassificationResultMemory, IsReleasedForANegativeCountAndWithoutAnArray) {
    const std::size_t live = LiveBlocks();
    ClassificationResult negative{0, -1, new Response[2]};
    EndDetections(&negative);
    EXPECT_EQ(negative.Responses, nullptr);
    ClassificationResult bare{0, 4, nullptr};
    EndDetections(&bare);
    EXPECT_EQ(LiveBlocks(), live);
}

// ---- clusters

TEST(ClustererResultMemory, ReleasesEveryContourThatIsThere) {
    const std::size_t live = LiveBlocks();
    ClustererResult result = CreateClustererResult(3);
    for (int i = 0; i < 3; ++i) result.Clusters[i] = {i == 1 ? nullptr : CreateContour(i), 0.5F, 0.5F};
    DestroyClustererResult(&result);
    EXPECT_EQ(result.Clusters, nullptr);
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
    const std::size_t live = LiveBlocks();
    ClustererResult result{};
    result.Count = 5;
    DestroyClustererResult(&result);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST(ClusterMemory, IsARecordWithAContourAtTheOrigin) {
    AllocationLog log;
    Cluster* const cluster = CreateCluster(4);
    const Sizes sizes = log.Sizes();
    EXPECT_EQ(sizes, (Sizes{16, 24, 32}));
    EXPECT_EQ(cluster->CenterX, 0.0F);
    EXPECT_EQ(cluster->CenterY, 0.0F);
    EXPECT_TRUE(IsContour(cluster->Contour, 4));
    DestroyContour(cluster->Contour);
    delete cluster;
}

TEST(ClusterMemory, IsNotKeptWhenMemoryEnds) {
    for (std::size_t served = 0; served < 3; ++served) {
        const std::size_t live = LiveBlocks();
        {
            const FailingAllocation failing(served);
            EXPECT_THROW(CreateCluster(4), std::bad_alloc) << served;
        }
        EXPECT_EQ(LiveBlocks(), live) << served;
    }
}

TEST(ClusterMemory, LosesItsContourAndKeepsItsRecordWhenItIsDestroyed) {
    Cluster cluster{CreateContour(3), 0.5F, 0.0F};
    Cluster* reference = &cluster;
    const std::size_t live = LiveBlocks();
    DestroyCluster(reference);
    EXPECT_EQ(LiveBlocks(), live - 2) << "the contour and its points are gone";
    DestroyCluster(reference);
    EXPECT_EQ(LiveBlocks(), live - 2) << "there is nothing left to be released";
    EXPECT_EQ(reference, &cluster);
    EXPECT_EQ(cluster.Contour, nullptr);
    EXPECT_EQ(cluster.CenterX, 0.5F);
    Cluster* null = nullptr;
    DestroyCluster(null);
    EXPECT_EQ(null, nullptr);
}

// ---- a detection

TEST(ResponseMemory, StoresItsLastTwoFloatsCrosswise) {
    Response response;
    std::memset(&response, 0xAB, sizeof(response));
    AllocationLog log;
    CreateResponse(1, 2, 3, 4, 0.5, &response);
    EXPECT_EQ(log.Sizes(), Sizes{});
    EXPECT_EQ(response.Weight, 0.5);
    const float expected[] = {1, 2, 4, 3};  // X, Y, Width, Height
    EXPECT_EQ(std::memcmp(&response.Rect, expected, sizeof(expected)), 0);
}

TEST(ResponseMemory, RefusesNullToFill) {
    EXPECT_THROW(CreateResponse(1, 2, 3, 4, 0.5, nullptr), std::invalid_argument);
}

TEST(ResponseMemory, IsReleased) {
    const std::size_t live = LiveBlocks();
    DestroyResponse(new Response);
    DestroyResponse(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

}  // namespace
