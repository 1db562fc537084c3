#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"

namespace {

using namespace quarry::test;

using Points = std::vector<FloatPoint>;

constexpr int kInside = 1;
constexpr int kOutside = -1;
constexpr int kCrossing = 0;

const Points kSquare = {{0, 0}, {0, 10}, {10, 10}, {10, 0}};
const FloatPoint kWithin{5, 5};
const FloatPoint kBeyond{15, 5};
const FloatPoint kOnSide{10, 5};
const FloatPoint kOnCorner{0, 0};

/// One processor, called through the drivers.
class ContourIntersection : public testing::Test {
protected:
    explicit ContourIntersection(unsigned char fill = 0xA5) {
        auto options = FramedOptions<ContourIntersectionProcessorOptions>(fill);
        CreateCVContourIntersectionProcessor(&handle, options.record());
    }
    ~ContourIntersection() override { Dispose(handle); }

    static Framed<ContourIntersectionProcessorData> Input(Points& polygon, Points& test, unsigned char unread = 0xA5) {
        auto input = FramedInput<ContourIntersectionProcessorData>(unread);
        input->Polygon.Points = polygon.data();
        input->Polygon.Count = static_cast<int32_t>(polygon.size());
        input->TestContour.Points = test.data();
        input->TestContour.Count = static_cast<int32_t>(test.size());
        return input;
    }

    int Position(Framed<ContourIntersectionProcessorData>& input) {
        auto result = FramedResult<ContourInstersectionProcessorResult>(0xA5);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        return result->Position;
    }
    int Position(Points polygon, Points test) {
        auto input = Input(polygon, test);
        return Position(input);
    }

    /// A call that must throw, and change nothing.
    void ExpectRefusal(Framed<ContourIntersectionProcessorData>& input, const std::string& message) {
        EXPECT_EQ((RefusalOfInput<std::invalid_argument, ContourInstersectionProcessorResult>(handle, input)), message);
    }

    void* handle = nullptr;
};

/// Which sides of a polygon a contour's points lie on, and what that makes of the contour.
int Reference(const Points& polygon, const Points& test) {
    std::vector<cv::Point2f> border;
    for (const FloatPoint& point : polygon) border.emplace_back(point.X, point.Y);
    std::vector<int> sides;
    for (const FloatPoint& point : test) {
        sides.push_back(static_cast<int>(cv::pointPolygonTest(border, cv::Point2f(point.X, point.Y), false)));
    }
    if (sides[0] == 0) return 1;
    for (const int side : sides) {
        if (side != 0 && side != sides[0]) return 0;
    }
    return sides[0];
}

Points RandomPoints(cv::RNG& random, int count, bool whole, double reach) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const auto x = random.uniform(-reach, reach);
        const auto y = random.uniform(-reach, reach);
        points.push_back(
            {static_cast<float>(whole ? std::floor(x) : x), static_cast<float>(whole ? std::floor(y) : y)});
    }
    return points;
}

TEST_F(ContourIntersection, IsDecidedByTheSidesOfThePoints) {
    int seen[3] = {};
    for (uint64_t seed = 0; seed < 3000; ++seed) {
        cv::RNG random(seed + 1);          // a generator seeded with 0 gives 0 for ever
        const bool whole = seed % 2 == 0;  // whole numbers often lie on the border
        const double scale = seed % 3 == 0 ? 0.5 : 6.0;
        const Points polygon = RandomPoints(random, random.uniform(1, 9), whole, scale);
        const Points test = RandomPoints(random, random.uniform(1, seed % 5 == 0 ? 40 : 6), whole, scale / 2);
        const int expected = Reference(polygon, test);
        ++seen[expected + 1];
        EXPECT_EQ(Position(polygon, test), expected) << "seed " << seed;
    }
    for (const int count : seen) EXPECT_GT(count, 100) << "an answer is not tried often";
}

TEST_F(ContourIntersection, OfPointsThatAreNotNumbersIsWhatTheirSidesSay) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    for (const FloatPoint& odd :
         {FloatPoint{nan, 5}, FloatPoint{5, nan}, FloatPoint{infinity, 5}, FloatPoint{5, -infinity}}) {
        for (const Points& test : {Points{odd}, Points{kWithin, odd}, Points{odd, kWithin}, Points{kBeyond, odd}}) {
            EXPECT_EQ(Position(kSquare, test), Reference(kSquare, test)) << odd.X << ", " << odd.Y;
        }
    }
}

TEST_F(ContourIntersection, IsInsideWhenAllPointsAre) {
    EXPECT_EQ(Position(kSquare, {{1, 1}, {1, 9}, {9, 9}, {9, 1}}), kInside);
}

TEST_F(ContourIntersection, IsOutsideWhenAllPointsAre) {
    EXPECT_EQ(Position(kSquare, {{11, 1}, {11, 9}, {19, 9}, {-1, -1}}), kOutside);
}

TEST_F(ContourIntersection, IsCrossingWhenAPointIsOnTheOtherSideOfTheFirst) {
    EXPECT_EQ(Position(kSquare, {kWithin, {6, 6}, kBeyond}), kCrossing);
    EXPECT_EQ(Position(kSquare, {kBeyond, {16, 6}, kWithin}), kCrossing);
}

TEST_F(ContourIntersection, TellsThePolygonFromTheContour) {
    const Points small = {{4, 4}, {4, 6}, {6, 6}, {6, 4}};
    EXPECT_EQ(Position(kSquare, small), kInside);
    EXPECT_EQ(Position(small, kSquare), kOutside);
}

TEST_F(ContourIntersection, TestsPointsAloneAndNotTheSidesBetweenThem) {
    // The contour surrounds the polygon, and in the second case cuts through it: none of its points lies inside.
    EXPECT_EQ(Position(kSquare, {{-5, -5}, {-5, 15}, {15, 15}, {15, -5}}), kOutside);
    EXPECT_EQ(Position(kSquare, {{-5, 5}, {15, 5}, {15, 6}, {-5, 6}}), kOutside);
}

TEST_F(ContourIntersection, DoesNotCountPointsOnTheBorderAfterTheFirst) {
    EXPECT_EQ(Position(kSquare, {kWithin, kOnSide, kOnCorner}), kInside);
    EXPECT_EQ(Position(kSquare, {kBeyond, kOnSide, kOnCorner}), kOutside);
    EXPECT_EQ(Position(kSquare, {kWithin, kOnSide, kBeyond}), kCrossing);
    EXPECT_EQ(Position(kSquare, {kBeyond, kOnCorner, kWithin}), kCrossing);
}

TEST_F(ContourIntersection, IsInsideWhenTheFirstPointIsOnTheBorderWhateverFollows) {
    for (const FloatPoint& first : {kOnSide, kOnCorner}) {
        EXPECT_EQ(Position(kSquare, {first, kBeyond, kBeyond}), kInside);
        EXPECT_EQ(Position(kSquare, {first, kWithin, kWithin}), kInside);
        EXPECT_EQ(Position(kSquare, {first, kWithin, kBeyond}), kInside);
        EXPECT_EQ(Position(kSquare, {first, kOnSide}), kInside);
    }
}

TEST_F(ContourIntersection, OfASinglePointIsItsSide) {
    EXPECT_EQ(Position(kSquare, {kWithin}), kInside);
    EXPECT_EQ(Position(kSquare, {kBeyond}), kOutside);
    EXPECT_EQ(Position(kSquare, {kOnSide}), kInside);
    EXPECT_EQ(Position(kSquare, {kOnCorner}), kInside);
}

TEST_F(ContourIntersection, StaysCrossingWhateverFollows) {
    for (const FloatPoint& last : {kWithin, kBeyond, kOnSide}) {
        EXPECT_EQ(Position(kSquare, {kWithin, kBeyond, last, last}), kCrossing) << last.X;
        EXPECT_EQ(Position(kSquare, {kBeyond, kWithin, last, last}), kCrossing) << last.X;
    }
}

TEST_F(ContourIntersection, ReadsTheLastPointToo) {
    for (std::size_t count = 2; count < 50; ++count) {
        Points test(count, kWithin);
        EXPECT_EQ(Position(kSquare, test), kInside) << count << " points";
        test.back() = kBeyond;
        EXPECT_EQ(Position(kSquare, test), kCrossing) << count << " points";
    }
}

TEST_F(ContourIntersection, DoesNotDependOnTheWayThePolygonRuns) {
    const Points reversed(kSquare.rbegin(), kSquare.rend());
    EXPECT_EQ(Position(reversed, {kWithin}), kInside);
    EXPECT_EQ(Position(reversed, {kBeyond}), kOutside);
}

TEST_F(ContourIntersection, TakesFractionsAsTheyAre) {
    const Points polygon = {{0.2F, 0.2F}, {0.2F, 0.6F}, {0.6F, 0.6F}, {0.6F, 0.2F}};
    EXPECT_EQ(Position(polygon, {{0.3F, 0.3F}, {0.59F, 0.21F}}), kInside);
    EXPECT_EQ(Position(polygon, {{0.1F, 0.3F}, {0.61F, 0.5F}}), kOutside);
    EXPECT_EQ(Position(polygon, {{0.3F, 0.3F}, {0.61F, 0.5F}}), kCrossing);
}

TEST_F(ContourIntersection, HandsAPolygonWithoutPointsToOpenCv) {
    bool refused = false;
    int side = 0;
    try {
        side = static_cast<int>(cv::pointPolygonTest(std::vector<cv::Point2f>(), cv::Point2f(5, 5), false));
    } catch (const cv::Exception&) {
        refused = true;
    }
    Points points = kSquare;
    for (FloatPoint* const unread : {points.data(), static_cast<FloatPoint*>(nullptr)}) {
        for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
            SCOPED_TRACE(count);
            Points test = {kWithin};
            auto input = Input(points, test);
            input->Polygon.Points = unread;
            input->Polygon.Count = count;
            const std::size_t before = LiveBlocks();
            try {
                EXPECT_EQ(Position(input), side == 0 ? 1 : side);
                EXPECT_FALSE(refused);
            } catch (const cv::Exception&) {
                EXPECT_TRUE(refused);
            }
            EXPECT_EQ(LiveBlocks(), before);
        }
    }
}

TEST_F(ContourIntersection, RefusesAContourWithoutPoints) {
    Points polygon = kSquare;
    Points test = {kWithin};
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        auto input = Input(polygon, test);
        input->TestContour.Count = count;
        ExpectRefusal(input, "ContourIntersectionProcessorData.TestContour.Count is " + std::to_string(count) +
                                 "; at least 1 is needed");
    }
}

TEST_F(ContourIntersection, RefusesNullPointsWhereSomeAreCounted) {
    Points polygon = kSquare;
    Points test = {kWithin, kBeyond};
    auto input = Input(polygon, test);
    input->Polygon.Points = nullptr;
    ExpectRefusal(input, "ContourIntersectionProcessorData.Polygon.Points is null; 4 points are needed");
    input = Input(polygon, test);
    input->TestContour.Points = nullptr;
    ExpectRefusal(input, "ContourIntersectionProcessorData.TestContour.Points is null; 2 points are needed");
}

TEST_F(ContourIntersection, WorksAfterAFailedCall) {
    Points polygon = kSquare;
    Points test = {kWithin};
    auto input = Input(polygon, test);
    input->TestContour.Count = 0;
    ExpectRefusal(input, "ContourIntersectionProcessorData.TestContour.Count is 0; at least 1 is needed");
    EXPECT_EQ(Position(kSquare, {kBeyond}), kOutside);
}

TEST_F(ContourIntersection, ReadsNothingOfTheContoursButTheirPoints) {
    Points polygon = kSquare;
    Points test = {kWithin, kBeyond};
    const unsigned char fills[] = {0x00, 0x01, 0xFF};
    for (const unsigned char unread : fills) {
        auto input = Input(polygon, test, unread);
        EXPECT_EQ(Position(input), kCrossing) << "filled with " << int{unread};
    }
}

TEST_F(ContourIntersection, DoesNotReadItsOptions) {
    const unsigned char fills[] = {0x00, 0x01, 0xFF};
    for (const unsigned char fill : fills) {
        auto options = FramedOptions<ContourIntersectionProcessorOptions>(fill);
        Dispose(handle);
        CreateCVContourIntersectionProcessor(&handle, options.record());
        EXPECT_EQ(Position(kSquare, {kWithin}), kInside) << "filled with " << int{fill};
        EXPECT_EQ(Position(kSquare, {kBeyond}), kOutside) << "filled with " << int{fill};
    }
}

TEST_F(ContourIntersection, LeavesTheContoursAsTheyAre) {
    Points polygon = kSquare;
    Points test = {kWithin, kBeyond};
    auto input = Input(polygon, test);
    const auto before = input.Bytes();
    Position(input);
    EXPECT_EQ(input.Bytes(), before);
    for (std::size_t i = 0; i < kSquare.size(); ++i) {
        EXPECT_EQ(polygon[i].X, kSquare[i].X) << "point " << i;
        EXPECT_EQ(polygon[i].Y, kSquare[i].Y) << "point " << i;
    }
    EXPECT_EQ(test[0].X, kWithin.X);
    EXPECT_EQ(test[1].X, kBeyond.X);
}

TEST_F(ContourIntersection, KeepsNothingInMemory) {
    Position(kSquare, {kWithin, kBeyond});
    const std::size_t before = LiveBlocks();
    Position(kSquare, {kWithin, kBeyond});
    EXPECT_EQ(LiveBlocks(), before);
}

TEST_F(ContourIntersection, GivingAResultBackChangesNothing) {
    auto result = FramedResult<ContourInstersectionProcessorResult>(0x5A);
    const auto bytes = result.Bytes();
    const std::size_t before = LiveBlocks();
    DisposeResult(handle, result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), bytes);
    EXPECT_EQ(LiveBlocks(), before);
}

}  // namespace
