#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "plain/ContourRateMeasuringProcessor.h"
#include "support/Calls.h"

namespace {

using namespace quarry::test;
using quarry::plain::SameBits;

using Points = std::vector<FloatPoint>;

constexpr int kLowest = std::numeric_limits<int>::min();

double NanWithPayload() {
    const uint64_t bits = 0x7FF800000BADCAFE;
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

const Points kTriangle = {{0.1F, 0.1F}, {0.2F, 0.9F}, {0.8F, 0.5F}};
const Points kQuadrangle = {{0.1F, 0.1F}, {0.1F, 0.4F}, {0.9F, 0.9F}, {0.6F, 0.1F}};

/// An input record and the points that it shows.
struct Shapes {
    Shapes(Points currentPoints, Points previousPoints, const cv::Size& frame = {640, 480}, double interval = 1000)
        : current(std::move(currentPoints)),
          previous(std::move(previousPoints)),
          record{0,
                 {current.data(), static_cast<int32_t>(current.size()), 0, 0},
                 {previous.data(), static_cast<int32_t>(previous.size()), 0, 0},
                 static_cast<int16_t>(frame.width),
                 static_cast<int16_t>(frame.height),
                 77.0,
                 interval} {}

    Points current, previous;
    ContourRateMeasuringInputData record;
};

class ContourRate : public ProcessorTest<operations::ContourRate> {
protected:
    ContourRate() : ProcessorTest({0, 0, cv::CONTOURS_MATCH_I1}) {}

    void Create(int method) { ProcessorTest::Create({0, 0, method}); }

    double Rate(const Shapes& shapes) { return Call(shapes.record)->Rate; }
    double Rate(const Points& current, const Points& previous, const cv::Size& frame = {640, 480},
                double interval = 1000) {
        return Rate(Shapes(current, previous, frame, interval));
    }

    template <class Exception>
    void ExpectRefusal(const Shapes& shapes, const std::string& message = {}) {
        ProcessorTest::ExpectRefusal<Exception>(shapes.record, message);
    }
};

std::vector<cv::Point> Pixels(const Points& points, const cv::Size& frame) {
    return quarry::plain::PixelsOf(points, frame);
}

double Distance(const Points& current, const Points& previous, const cv::Size& frame, int method) {
    return quarry::plain::ShapeDistance(current, previous, frame, method);
}

Points RandomContour(cv::RNG& random) {
    Points points;
    const int count = random.uniform(1, 30);
    for (int i = 0; i < count; ++i) {
        points.push_back(
            {static_cast<float>(random.uniform(-0.2, 1.2)), static_cast<float>(random.uniform(-0.2, 1.2))});
    }
    return points;
}

TEST_F(ContourRate, IsTheDistanceOfTheShapesPerSecond) {
    const cv::Size frames[] = {{640, 480}, {1, 1}, {33, 77}, {1920, 1080}, {32767, 32767}, {-640, 480}, {-1, -32768}};
    for (const int method : {1, 2, 3}) {
        Create(method);
        for (uint64_t seed = 0; seed < 300; ++seed) {
            cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
            const cv::Size& frame = frames[seed % std::size(frames)];
            const double interval = random.uniform(-50.0, 5000.0);
            const Points current = RandomContour(random);
            const Points previous = RandomContour(random);
            const double expected = Distance(current, previous, frame, method) / (interval / 1000.0);
            EXPECT_TRUE(SameBits(Rate(current, previous, frame, interval), expected))
                << "method " << method << ", seed " << seed << ", " << frame;
        }
    }
}

TEST_F(ContourRate, ComparesTheCurrentContourWithThePreviousOne) {
    // By the third method the distance is relative to the first contour, so that the order shows.
    Create(cv::CONTOURS_MATCH_I3);
    const cv::Size frame(640, 480);
    const double forth = Distance(kTriangle, kQuadrangle, frame, 3);
    const double back = Distance(kQuadrangle, kTriangle, frame, 3);
    ASSERT_NE(forth, back);
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, frame), forth);
    EXPECT_EQ(Rate(kQuadrangle, kTriangle, frame), back);
}

TEST_F(ContourRate, OfIdenticalContoursIsZero) {
    for (const int method : {1, 2, 3}) {
        Create(method);
        for (const double interval : {0.001, 1.0, 40.0, 1e9}) {
            EXPECT_EQ(Rate(kTriangle, kTriangle, {640, 480}, interval), 0.0) << method << ", " << interval;
        }
    }
}

TEST_F(ContourRate, IsPerSecond) {
    const double distance = Distance(kTriangle, kQuadrangle, {640, 480}, 1);
    ASSERT_GT(distance, 0.0);
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, {640, 480}, 1000), distance);
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, {640, 480}, 500), 2 * distance);
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, {640, 480}, 4000), distance / 4);
}

TEST_F(ContourRate, DividesByTheIntervalInSeconds) {
    // distance * 1000 / 7 is another number than distance / 0.007 for some shapes.
    int telling = 0;
    for (uint64_t seed = 0; seed < 100; ++seed) {
        cv::RNG random(seed + 1);
        const Points current = RandomContour(random);
        const double distance = Distance(current, kTriangle, {640, 480}, 1);
        EXPECT_EQ(Rate(current, kTriangle, {640, 480}, 7), distance / (7 / 1000.0)) << "seed " << seed;
        telling += distance * 1000.0 / 7 != distance / (7 / 1000.0) ? 1 : 0;
    }
    EXPECT_GT(telling, 0) << "no shape tells one order of the operations from another";
}

TEST_F(ContourRate, OfNoTimeIsInfiniteOrNotANumber) {
    ASSERT_GT(Distance(kTriangle, kQuadrangle, {640, 480}, 1), 0.0);
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, {640, 480}, 0.0), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, {640, 480}, -0.0), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(Rate(kTriangle, kTriangle, {640, 480}, 0.0)));
}

TEST_F(ContourRate, IsNegativeForANegativeInterval) {
    EXPECT_EQ(Rate(kTriangle, kQuadrangle, {640, 480}, -1000), -Distance(kTriangle, kQuadrangle, {640, 480}, 1));
}

TEST_F(ContourRate, ScalesWidthAndHeightApart) {
    const double wide = Rate(kTriangle, kQuadrangle, {900, 30});
    EXPECT_EQ(wide, Distance(kTriangle, kQuadrangle, {900, 30}, 1));
    ASSERT_NE(Distance(kTriangle, kQuadrangle, {30, 900}, 1), wide);
}

TEST_F(ContourRate, ScalesInSinglePrecision) {
    // 0.7F x 10 is 7 as a float; before it is rounded it is just below.
    ASSERT_LT(static_cast<double>(0.7F) * 10, 7.0);
    const Points shape = {{0, 0}, {0.7F, 0}, {0.7F, 0.7F}, {0, 0.3F}};
    const std::vector<cv::Point> pixels = {{0, 0}, {7, 0}, {7, 7}, {0, 3}};
    const std::vector<cv::Point> below = {{0, 0}, {6, 0}, {6, 6}, {0, 3}};
    const std::vector<cv::Point> other = Pixels(kTriangle, {10, 10});
    ASSERT_NE(cv::matchShapes(pixels, other, 1, 0), cv::matchShapes(below, other, 1, 0));
    EXPECT_EQ(Rate(shape, kTriangle, {10, 10}), cv::matchShapes(pixels, other, 1, 0));
}

TEST_F(ContourRate, TruncatesTowardZero) {
    const Points shape = {{-0.09F, -0.05F}, {0.79F, 0.08F}, {0.89F, 0.69F}, {-0.19F, 0.39F}};
    const std::vector<cv::Point> pixels = {{0, 0}, {7, 0}, {8, 6}, {-1, 3}};
    const std::vector<cv::Point> floored = {{-1, -1}, {7, 0}, {8, 6}, {-2, 3}};
    const std::vector<cv::Point> other = Pixels(kTriangle, {10, 10});
    ASSERT_NE(cv::matchShapes(pixels, other, 1, 0), cv::matchShapes(floored, other, 1, 0));
    EXPECT_EQ(Rate(shape, kTriangle, {10, 10}), cv::matchShapes(pixels, other, 1, 0));
}

TEST_F(ContourRate, TakesPlacesThatNoPixelHasForTheLowestOne) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float place : {nan, infinity, -infinity, 1e30F, 4e8F}) {
        Points odd = kQuadrangle;
        odd[1].X = place;
        odd[2].Y = place;
        EXPECT_TRUE(SameBits(Rate(odd, kTriangle, {640, 480}), Distance(odd, kTriangle, {640, 480}, 1))) << place;
    }
}

TEST_F(ContourRate, IsTheDefaultRateBitForBitWhenTheFrameHasNoSize) {
    for (const cv::Size& frame : {cv::Size(0, 480), cv::Size(640, 0), cv::Size(0, 0)}) {
        for (const double rate : {NanWithPayload(), -0.0, 1e-310, 12.5}) {
            Shapes shapes(kTriangle, kQuadrangle, frame);
            shapes.record.DefaultRate = rate;
            const double given = Rate(shapes);
            EXPECT_EQ(std::memcmp(&given, &rate, sizeof(rate)), 0) << frame << ", " << rate;
        }
    }
}

TEST_F(ContourRate, DoesNotLookAtTheContoursWhenTheFrameHasNoSize) {
    Create(99);  // a method that nothing knows
    Shapes shapes(kTriangle, kQuadrangle, {0, 480});
    shapes.record.CurrentContour.Points = nullptr;
    shapes.record.PreviousContour.Count = -1;
    EXPECT_EQ(Rate(shapes), 77.0);
    shapes.record.CurrentContour.Count = kLowest;
    EXPECT_EQ(Rate(shapes), 77.0);
}

TEST_F(ContourRate, FailsAsAnAllocationForANegativeCount) {
    for (const int count : {-1, kLowest}) {
        SCOPED_TRACE(count);
        Shapes shapes(kTriangle, kQuadrangle);
        shapes.record.CurrentContour.Count = count;
        ExpectRefusal<std::bad_alloc>(shapes);
        Shapes others(kTriangle, kQuadrangle);
        others.record.PreviousContour.Count = count;
        ExpectRefusal<std::bad_alloc>(others);
        others.record.PreviousContour.Points = nullptr;
        ExpectRefusal<std::bad_alloc>(others);
    }
}

TEST_F(ContourRate, RefusesNullPointsWhereSomeAreCounted) {
    Shapes shapes(kTriangle, kQuadrangle);
    shapes.record.CurrentContour.Points = nullptr;
    ExpectRefusal<std::invalid_argument>(
        shapes, "ContourRateMeasuringInputData.CurrentContour.Points is null; 3 points are needed");
    Shapes others(kTriangle, kQuadrangle);
    others.record.PreviousContour.Points = nullptr;
    ExpectRefusal<std::invalid_argument>(
        others, "ContourRateMeasuringInputData.PreviousContour.Points is null; 4 points are needed");
}

TEST_F(ContourRate, RefusesAMatchMethodThatOpenCvDoesNotKnow) {
    Rate(kTriangle, kQuadrangle);
    for (const int method : {0, 4, -1, 99}) {
        SCOPED_TRACE(method);
        Create(method);
        Shapes shapes(kTriangle, kQuadrangle);
        ExpectRefusal<cv::Exception>(shapes);
    }
}

/// The same, where the process must end. Each runs in a process of its own.
class ContourRateDeath : public ContourRate {
protected:
    ContourRateDeath() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// The message of the assertion that stands in a line of the processor's source.
    static std::string Assertion(int line, const std::string& expression) {
        return "Quarry\\.OpenCV/ContourRateMeasuringProcessor\\.cpp:" + std::to_string(line) +
               ": virtual ContourRateMeasuringOutputData "
               "ContourRateMeasuringProcessor::DoProcess\\(ContourRateMeasuringInputData\\): Assertion `" +
               expression + " != 0' failed";
    }

    void ExpectDeath(Shapes& shapes, const std::string& message) { EXPECT_DEATH(Rate(shapes), message); }
};

TEST_F(ContourRateDeath, EndsTheProcessForACurrentContourWithoutPoints) {
    Shapes shapes({}, kQuadrangle);
    ExpectDeath(shapes, Assertion(5, "data\\.CurrentContour\\.Count"));
}

TEST_F(ContourRateDeath, EndsTheProcessForAPreviousContourWithoutPoints) {
    Shapes shapes(kTriangle, {});
    ExpectDeath(shapes, Assertion(6, "data\\.PreviousContour\\.Count"));
}

TEST_F(ContourRateDeath, LooksAtTheCurrentContourFirst) {
    Shapes shapes({}, {});
    ExpectDeath(shapes, Assertion(5, "data\\.CurrentContour\\.Count"));
}

TEST_F(ContourRateDeath, EndsTheProcessAlsoWhenTheFrameHasNoSize) {
    Shapes shapes(kTriangle, {}, {0, 0});
    ExpectDeath(shapes, Assertion(6, "data\\.PreviousContour\\.Count"));
}

TEST_F(ContourRateDeath, EndsTheProcessBeforeTheOtherContourFailsAsAnAllocation) {
    Shapes shapes(kTriangle, {});
    shapes.record.CurrentContour.Count = -1;
    ExpectDeath(shapes, Assertion(6, "data\\.PreviousContour\\.Count"));
}

}  // namespace
