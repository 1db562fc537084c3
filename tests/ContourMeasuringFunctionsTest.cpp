#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.OpenCV/ContourMeasuringFunctions.h"
#include "support/Footage.h"

namespace {

using namespace quarry::test;

using Points = std::vector<cv::Point>;

constexpr int kArea = 0;
constexpr int kDiagonal = 1;
const std::vector<int> kMethods = {cv::CHAIN_APPROX_NONE, cv::CHAIN_APPROX_SIMPLE, cv::CHAIN_APPROX_TC89_L1,
                                   cv::CHAIN_APPROX_TC89_KCOS};
const std::vector<int> kUnknownModes = {2, 7, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};

/// Corners of an upright rectangle that spans `width` x `height` pixels.
Points Box(int x, int y, int width, int height) {
    return {{x, y}, {x, y + height - 1}, {x + width - 1, y + height - 1}, {x + width - 1, y}};
}

Points Reversed(Points points) {
    std::reverse(points.begin(), points.end());
    return points;
}

/// Twice the area, by the sum of the cross products of the sides.
int64_t TwiceTheArea(const Points& contour) {
    int64_t sum = 0;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const cv::Point& a = contour[i];
        const cv::Point& b = contour[(i + 1) % contour.size()];
        sum += int64_t{a.x} * b.y - int64_t{b.x} * a.y;
    }
    return std::abs(sum);
}

/// The squared diagonal of the pixels from the leftmost to the rightmost and from the highest to the lowest.
int64_t SquaredDiagonal(const Points& contour) {
    int left = contour[0].x;
    int right = left;
    int top = contour[0].y;
    int bottom = top;
    for (const cv::Point& point : contour) {
        left = std::min(left, point.x);
        right = std::max(right, point.x);
        top = std::min(top, point.y);
        bottom = std::max(bottom, point.y);
    }
    const int64_t width = right - left + 1;
    const int64_t height = bottom - top + 1;
    return width * width + height * height;
}

/// All borders in a rectangle of a mask, in the order in which they are found.
std::vector<Points> Borders(const cv::Mat& mask, const cv::Rect& rect, int method) {
    const cv::Mat copy = mask.clone();
    cv::Mat region(copy, rect);
    std::vector<Points> borders;
    cv::findContours(region, borders, cv::RETR_LIST, method);
    return borders;
}

Points Reference(const cv::Mat& mask, const cv::Rect& rect, int method, int mode) {
    const std::vector<Points> borders = Borders(mask, rect, method);
    std::vector<int64_t> scores;
    scores.reserve(borders.size());
    for (const Points& border : borders) {
        scores.push_back(mode == kArea ? TwiceTheArea(border) : mode == kDiagonal ? SquaredDiagonal(border) : 0);
    }
    const auto best = std::max_element(scores.begin(), scores.end());  // the first of the highest
    if (best == scores.end() || *best == 0) return {};
    return borders[static_cast<std::size_t>(best - scores.begin())];
}

/// Blobs, rings, thin rings, lines and single pixels of random values.
cv::Mat RandomMask(const cv::Size& size, uint64_t seed) {
    cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
    cv::Mat mask = cv::Mat::zeros(size, CV_8UC1);
    const auto place = [&] { return cv::Point(random.uniform(0, size.width), random.uniform(0, size.height)); };
    const int shapes = random.uniform(1, 9);
    for (int i = 0; i < shapes; ++i) {
        const cv::Scalar value(random.uniform(1, 256));
        const cv::Size axes(random.uniform(0, size.width / 3 + 1), random.uniform(0, size.height / 3 + 1));
        const int thickness = random.uniform(0, 2) == 0 ? static_cast<int>(cv::FILLED) : random.uniform(1, 4);
        switch (random.uniform(0, 5)) {
            case 0:
                cv::ellipse(mask, place(), axes, random.uniform(0, 180), 0, 360, value, thickness);
                break;
            case 1:
                cv::rectangle(mask, place(), place(), value, thickness);
                break;
            case 2:
                cv::line(mask, place(), place(), value, random.uniform(1, 3));
                break;
            case 3:
                mask.at<uint8_t>(place()) = static_cast<uint8_t>(value[0]);
                break;
            default:
                cv::circle(mask, place(), random.uniform(0, size.height / 2 + 1), value, 1);
                break;
        }
    }
    return mask;
}

cv::Rect RandomRect(const cv::Size& size, cv::RNG& random) {
    const int x = random.uniform(0, size.width);
    const int y = random.uniform(0, size.height);
    return {x, y, random.uniform(1, size.width - x + 1), random.uniform(1, size.height - y + 1)};
}

cv::Rect Whole(const cv::Mat& mask) {
    return {0, 0, mask.cols, mask.rows};
}

/// A ring whose outer and inner border run along the same pixels.
cv::Mat ThinDiamond() {
    cv::Mat mask = cv::Mat::zeros(15, 15, CV_8UC1);
    const std::vector<Points> diamond = {{{7, 2}, {2, 7}, {7, 12}, {12, 7}}};
    cv::polylines(mask, diamond, true, cv::Scalar(255));
    return mask;
}

TEST(ContourSelection, TakesTheLargestArea) {
    const std::vector<Points> contours = {Box(0, 0, 4, 4), Box(9, 9, 6, 6), Box(0, 0, 5, 5)};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kArea), contours[1]);
}

TEST(ContourSelection, TakesTheLargestDiagonal) {
    const std::vector<Points> contours = {Box(0, 0, 6, 6), {{3, 3}, {3, 30}}, Box(0, 0, 7, 7)};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kDiagonal), contours[1]);
}

TEST(ContourSelection, TakesTheEarlierOfEqualAreas) {
    const std::vector<Points> contours = {Box(0, 0, 2, 2), Box(9, 9, 3, 9), Box(0, 0, 5, 5), Box(1, 1, 9, 3)};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kArea), contours[1]);
}

TEST(ContourSelection, TakesTheEarlierOfEqualDiagonals) {
    const std::vector<Points> contours = {Box(0, 0, 2, 2), Box(9, 9, 3, 9), Box(1, 1, 9, 3)};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kDiagonal), contours[1]);
}

TEST(ContourSelection, RatesAreaWhateverWayTheContourRuns) {
    const std::vector<Points> contours = {Box(0, 0, 4, 4), Reversed(Box(2, 2, 6, 6)), Box(0, 0, 5, 5)};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kArea), contours[1]);
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour({Box(2, 2, 6, 6)}, kArea), Box(2, 2, 6, 6));
}

TEST(ContourSelection, CountsThePixelsOfTheBoundingBox) {
    // A box of 5 x 5 pixels and a line of 7 are equal, 50, where pixels count; between their centres the line is
    // longer.
    const std::vector<Points> contours = {Box(0, 0, 5, 5), {{0, 0}, {6, 0}}};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kDiagonal), contours[0]);
}

TEST(ContourSelection, AddsTheSquaresOfTheSides) {
    // 8 + 1 is less than 5 + 5, and 8 x 1 less than 5 x 5; 65 is more than 50.
    const std::vector<Points> contours = {Box(0, 0, 5, 5), {{0, 0}, {0, 7}}};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kDiagonal), contours[1]);
}

TEST(ContourSelection, NeverTakesAContourWithoutArea) {
    const std::vector<Points> contours = {{{3, 3}}, {{0, 0}, {90, 0}}, {{0, 0}, {5, 5}, {9, 9}}};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kArea), Points());
}

TEST(ContourSelection, TakesTheSmallestAreaThereIs) {
    const std::vector<Points> contours = {{{3, 3}}, {{0, 0}, {1, 0}, {0, 1}}};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kArea), contours[1]);
}

TEST(ContourSelection, TakesASinglePixelByItsDiagonal) {
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour({{{3, 4}}}, kDiagonal), (Points{{3, 4}}));
}

TEST(ContourSelection, NeverTakesAContourWithoutPoints) {
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour({{}, {{3, 4}}, {}}, kDiagonal), (Points{{3, 4}}));
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour({{}, {}}, kDiagonal), Points());
}

TEST(ContourSelection, OfNoContoursIsEmpty) {
    for (const int mode : {kArea, kDiagonal, 2}) {
        EXPECT_EQ(ContourMeasuringFunctions::SelectContour({}, mode), Points()) << "mode " << mode;
    }
}

TEST(ContourSelection, TakesNoneInAModeThatItDoesNotKnow) {
    for (const int mode : kUnknownModes) {
        EXPECT_EQ(ContourMeasuringFunctions::SelectContour({Box(0, 0, 9, 9), Box(1, 1, 3, 3)}, mode), Points())
            << "mode " << mode;
    }
}

TEST(ContourSelection, SquaresDiagonalsIn32Bits) {
    // 50001 x 50001 + 1 goes beyond 32 bits with a sign, and wraps below 0.
    const std::vector<Points> contours = {{{0, 0}, {50000, 0}}, {{3, 4}}};
    EXPECT_EQ(ContourMeasuringFunctions::SelectContour(contours, kDiagonal), contours[1]);
}

TEST(ContourMeasuring, FindsTheBestBorderOfRandomMasks) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {5, 7}, {33, 21}, {64, 48}, {101, 77}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 40; ++seed) {
            cv::Mat mask = RandomMask(size, seed);
            cv::RNG random(seed + 100);
            const cv::Rect rect = RandomRect(size, random);
            for (const int method : kMethods) {
                for (const int mode : {kArea, kDiagonal, 2}) {
                    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(rect, mask, method, mode),
                              Reference(mask, rect, method, mode))
                        << size << ", seed " << seed << ", " << rect << ", method " << method << ", mode " << mode;
                }
            }
        }
    }
}

TEST(ContourMeasuring, FindsTheBestBorderOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        cv::Mat mask;
        cv::cvtColor(frames[i], mask, cv::COLOR_BGR2GRAY);
        cv::threshold(mask, mask, 110, 255, cv::THRESH_BINARY_INV);
        for (const cv::Rect& rect : {Whole(mask), cv::Rect(131, 77, 333, 251), cv::Rect(700, 500, 68, 76)}) {
            for (const int mode : {kArea, kDiagonal}) {
                EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(rect, mask, 2, mode),
                          Reference(mask, rect, 2, mode))
                    << "frame " << i << ", " << rect << ", mode " << mode;
            }
        }
    }
}

TEST(ContourMeasuring, GivesPointsRelativeToTheRectangle) {
    cv::Mat mask = cv::Mat::zeros(20, 30, CV_8UC1);
    mask(cv::Rect(12, 9, 4, 3)).setTo(1);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({10, 5, 15, 12}, mask, 2, kArea), Box(2, 4, 4, 3));
}

TEST(ContourMeasuring, CutsAnObjectAtTheRectangle) {
    cv::Mat mask(20, 30, CV_8UC1, cv::Scalar(255));
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({3, 2, 5, 4}, mask, 2, kArea), Box(0, 0, 5, 4));
}

TEST(ContourMeasuring, DoesNotSeeALargerObjectBesideTheRectangle) {
    cv::Mat mask = cv::Mat::zeros(20, 30, CV_8UC1);
    mask(cv::Rect(1, 1, 3, 3)).setTo(255);
    mask(cv::Rect(10, 1, 15, 15)).setTo(255);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({0, 0, 8, 20}, mask, 2, kArea), Box(1, 1, 3, 3));
}

TEST(ContourMeasuring, TakesTheOuterBorderOfARing) {
    cv::Mat mask = cv::Mat::zeros(30, 30, CV_8UC1);
    mask(cv::Rect(4, 4, 20, 20)).setTo(255);
    mask(cv::Rect(9, 9, 10, 10)).setTo(0);
    EXPECT_EQ(Borders(mask, Whole(mask), 2).size(), 2U);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kArea), Box(4, 4, 20, 20));
}

TEST(ContourMeasuring, LetsTheHoleOfAThinRingWinATie) {
    cv::Mat mask = ThinDiamond();
    const std::vector<Points> borders = Borders(mask, Whole(mask), 1);
    std::vector<Points> outer;
    cv::findContours(mask, outer, cv::RETR_EXTERNAL, 1);
    ASSERT_EQ(borders.size(), 2U);
    ASSERT_EQ(TwiceTheArea(borders[0]), TwiceTheArea(borders[1]));
    ASSERT_EQ(borders[1], outer[0]) << "the hole is not the one that is found first";
    for (const int mode : {kArea, kDiagonal}) {
        EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 1, mode), borders[0])
            << "mode " << mode;
    }
}

TEST(ContourMeasuring, TakesTheFirstFoundOfTwinSquares) {
    cv::Mat mask = cv::Mat::zeros(20, 40, CV_8UC1);
    mask(cv::Rect(3, 3, 8, 8)).setTo(255);
    mask(cv::Rect(23, 7, 8, 8)).setTo(255);
    const Points first = Borders(mask, Whole(mask), 2).front();
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kArea), first);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kDiagonal), first);
}

TEST(ContourMeasuring, OfALineIsEmptyByArea) {
    cv::Mat mask = cv::Mat::zeros(20, 20, CV_8UC1);
    cv::line(mask, {2, 3}, {17, 3}, cv::Scalar(255));
    for (const int method : kMethods) {
        EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, method, kArea), Points())
            << "method " << method;
    }
}

TEST(ContourMeasuring, OfALineIsTheLineByItsDiagonal) {
    cv::Mat mask = cv::Mat::zeros(20, 20, CV_8UC1);
    cv::line(mask, {2, 3}, {17, 3}, cv::Scalar(255));
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kDiagonal), (Points{{2, 3}, {17, 3}}));
}

TEST(ContourMeasuring, IsEmptyInAModeThatItDoesNotKnow) {
    cv::Mat mask(20, 20, CV_8UC1, cv::Scalar(255));
    for (const int mode : kUnknownModes) {
        EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({2, 2, 9, 9}, mask, 2, mode), Points())
            << "mode " << mode;
    }
}

TEST(ContourMeasuring, TakesAnyByteThatIsNotZeroForForeground) {
    cv::Mat mask = cv::Mat::zeros(9, 9, CV_8UC1);
    for (int i = 0; i < 25; ++i) mask.at<uint8_t>(2 + i / 5, 2 + i % 5) = static_cast<uint8_t>(1 + 10 * i);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kArea), Box(2, 2, 5, 5));
}

TEST(ContourMeasuring, LeavesTheMaskAsItIs) {
    for (uint64_t seed = 0; seed < 10; ++seed) {
        cv::Mat mask = RandomMask({33, 21}, seed);
        const cv::Mat before = mask.clone();
        ContourMeasuringFunctions::GetObjectContour({1, 1, 30, 19}, mask, 2, kArea);
        EXPECT_EQ(cv::norm(mask, before, cv::NORM_INF), 0) << "seed " << seed;
    }
}

TEST(ContourMeasuring, TakesAreasInSinglePrecisionFromTheRectanglesCorner) {
    // Beyond 2^24 only even columns are told apart: the narrow box grows by two, the wide one shrinks by one.
    constexpr int kEvenOnly = 1 << 24;
    const Points narrow = Box(kEvenOnly + 1, 0, 3, 2);
    const Points wide = Box(kEvenOnly + 10, 0, 4, 2);
    ASSERT_GT(cv::contourArea(narrow), cv::contourArea(wide));
    cv::Mat mask = cv::Mat::zeros(2, kEvenOnly + 20, CV_8UC1);
    mask(cv::boundingRect(narrow)).setTo(255);
    mask(cv::boundingRect(wide)).setTo(255);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kArea), narrow);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({1 << 23, 0, (1 << 23) + 20, 2}, mask, 2, kArea),
              Box((1 << 23) + 10, 0, 4, 2));
}

TEST(ContourMeasuring, RefusesARectangleThatDoesNotLieInsideTheMask) {
    cv::Mat mask(20, 30, CV_8UC1, cv::Scalar(255));
    const cv::Rect outside[] = {{-1, 0, 5, 5}, {0, -1, 5, 5},  {0, 0, 31, 5}, {0, 0, 5, 21}, {26, 0, 5, 5},
                                {0, 16, 5, 5}, {30, 20, 1, 1}, {5, 5, -1, 5}, {5, 5, 5, -1}, {100, 100, 5, 5}};
    for (const cv::Rect& rect : outside) {
        try {
            ContourMeasuringFunctions::GetObjectContour(rect, mask, 2, kArea);
            ADD_FAILURE() << rect;
        } catch (const cv::Exception& refusal) {
            EXPECT_EQ(refusal.code, cv::Error::StsAssert) << rect;
            EXPECT_NE(refusal.err.find("roi.x + roi.width <= m.cols"), std::string::npos)
                << rect << ": in OpenCV's words, not " << refusal.err;
        }
    }
}

TEST(ContourMeasuring, RefusesARectangleWhoseEndWrapsIn32Bits) {
    cv::Mat mask(20, 30, CV_8UC1, cv::Scalar(255));
    constexpr int kLargest = std::numeric_limits<int>::max();
    for (const cv::Rect& rect : {cv::Rect(kLargest, 0, kLargest, 5), cv::Rect(0, kLargest, 5, kLargest)}) {
        EXPECT_THROW(ContourMeasuringFunctions::GetObjectContour(rect, mask, 2, kArea), cv::Exception) << rect;
    }
}

TEST(ContourMeasuring, TakesARectangleThatTouchesTheEdges) {
    cv::Mat mask(20, 30, CV_8UC1, cv::Scalar(255));
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({26, 15, 4, 5}, mask, 2, kArea), Box(0, 0, 4, 5));
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, 2, kArea), Box(0, 0, 30, 20));
}

TEST(ContourMeasuring, RefusesAnEmptyMask) {
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0)}) {
        cv::Mat mask(size, CV_8UC1);
        for (const cv::Rect& rect : {cv::Rect(0, 0, 0, 0), cv::Rect(0, 0, 1, 1), Whole(mask)}) {
            EXPECT_THROW(ContourMeasuringFunctions::GetObjectContour(rect, mask, 2, kArea), cv::Exception) << size;
        }
    }
}

TEST(ContourMeasuring, HandsTheMethodOfLinkedRunsToOpenCv) {
    constexpr int kLinkedRuns = 5;
    for (uint64_t seed = 0; seed < 40; ++seed) {
        cv::Mat mask = RandomMask({33, 21}, seed);
        for (const int mode : {kArea, kDiagonal}) {
            EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour(Whole(mask), mask, kLinkedRuns, mode),
                      Reference(mask, Whole(mask), kLinkedRuns, mode))
                << "seed " << seed << ", mode " << mode;
        }
    }
    cv::Mat black = cv::Mat::zeros(9, 9, CV_8UC1);
    EXPECT_EQ(ContourMeasuringFunctions::GetObjectContour({2, 2, 4, 4}, black, kLinkedRuns, kArea), Points());
}

TEST(ContourMeasuring, RefusesAMaskThatIsNotOfBytesWithOneChannel) {
    for (const int type : {CV_8UC3, CV_32FC1, CV_16UC1, CV_8UC2, CV_32SC1}) {
        cv::Mat mask(20, 30, type, cv::Scalar::all(1));
        EXPECT_THROW(ContourMeasuringFunctions::GetObjectContour({1, 1, 9, 9}, mask, 2, kArea), cv::Exception)
            << cv::typeToString(type);
    }
}

TEST(ContourMeasuring, RefusesAnApproximationMethodThatOpenCvDoesNotKnow) {
    cv::Mat mask(20, 30, CV_8UC1, cv::Scalar(255));
    for (const int method : {-1, 0, 6, 99, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_THROW(ContourMeasuringFunctions::GetObjectContour({1, 1, 9, 9}, mask, method, kArea), cv::Exception)
            << "method " << method;
    }
}

}  // namespace
