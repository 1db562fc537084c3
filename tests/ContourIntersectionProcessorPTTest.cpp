#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "plain/ContourIntersectionProcessorPT.h"
#include "support/Allocations.h"
#include "support/Calls.h"

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

class ContourIntersection : public ProcessorTest<operations::ContourIntersection> {
protected:
    static Input InputOf(Points& polygon, Points& test) {
        return {0,
                {polygon.data(), static_cast<int32_t>(polygon.size()), 0, 0},
                {test.data(), static_cast<int32_t>(test.size()), 0, 0}};
    }

    int Position(Points polygon, Points test) { return Call(InputOf(polygon, test))->Position; }
};

int Reference(const Points& polygon, const Points& test) {
    const auto listed = [](const Points& points) {
        return quarry::plain::Listed(points.data(), static_cast<int>(points.size()));
    };
    return quarry::plain::PositionOf(listed(polygon), listed(test));
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
            Input input = InputOf(points, test);
            input.Polygon.Points = unread;
            input.Polygon.Count = count;
            const std::size_t before = LiveBlocks();
            try {
                EXPECT_EQ(Call(input)->Position, side == 0 ? 1 : side);
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
        Input input = InputOf(polygon, test);
        input.TestContour.Count = count;
        ExpectRefusal<std::invalid_argument>(input, "ContourIntersectionProcessorData.TestContour.Count is " +
                                                        std::to_string(count) + "; at least 1 is needed");
    }
}

TEST_F(ContourIntersection, RefusesNullPointsWhereSomeAreCounted) {
    Points polygon = kSquare;
    Points test = {kWithin, kBeyond};
    Input input = InputOf(polygon, test);
    input.Polygon.Points = nullptr;
    ExpectRefusal<std::invalid_argument>(
        input, "ContourIntersectionProcessorData.Polygon.Points is null; 4 points are needed");
    input = InputOf(polygon, test);
    input.TestContour.Points = nullptr;
    ExpectRefusal<std::invalid_argument>(
        input, "ContourIntersectionProcessorData.TestContour.Points is null; 2 points are needed");
}

}  // namespace
