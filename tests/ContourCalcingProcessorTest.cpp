#include <gtest/gtest.h>

#include <limits>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "plain/ContourCalcingProcessor.h"
#include "support/Calls.h"
#include "support/Footage.h"

namespace {

using namespace quarry::test;
using quarry::plain::ObjectOutline;
using quarry::plain::Outline;

constexpr RelRect kEverything{0.0F, 0.0F, 1.0F, 1.0F};

Mask MaskOf(const cv::Mat& mask) {
    CV_Assert(mask.isContinuous());
    return {mask.data, mask.cols, mask.rows};
}

/// A rectangle that truncates to these pixels of a frame.
RelRect Around(const cv::Rect& rect, const cv::Size& frame) {
    const auto width = static_cast<float>(frame.width);
    const auto height = static_cast<float>(frame.height);
    return {(static_cast<float>(rect.x) + 0.5F) / width, (static_cast<float>(rect.y) + 0.5F) / height,
            (static_cast<float>(rect.width) + 0.5F) / width, (static_cast<float>(rect.height) + 0.5F) / height};
}

cv::Mat MaskWith(const cv::Size& size, const cv::Rect& object) {
    cv::Mat mask = cv::Mat::zeros(size, CV_8UC1);
    mask(object).setTo(255);
    return mask;
}

/// Blobs, rings, thin rings, lines and single pixels.
cv::Mat RandomMask(const cv::Size& size, uint64_t seed) {
    cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
    cv::Mat mask = cv::Mat::zeros(size, CV_8UC1);
    const auto place = [&] { return cv::Point(random.uniform(0, size.width), random.uniform(0, size.height)); };
    const int shapes = random.uniform(1, 7);
    for (int i = 0; i < shapes; ++i) {
        const cv::Scalar value(random.uniform(1, 256));
        const int radius = random.uniform(0, size.height / 2 + 1);
        switch (random.uniform(0, 4)) {
            case 0:
                cv::circle(mask, place(), radius, value, cv::FILLED);
                break;
            case 1:
                cv::circle(mask, place(), radius, value, random.uniform(1, 4));
                break;
            case 2:
                cv::rectangle(mask, place(), place(), value, random.uniform(0, 2) == 0 ? 1 : -1);
                break;
            default:
                cv::line(mask, place(), place(), value);
                break;
        }
    }
    return mask;
}

class ObjectContour : public ProcessorTest<operations::ObjectContour> {
protected:
    ObjectContour() : ProcessorTest({0, 0, cv::CHAIN_APPROX_SIMPLE, 0}) {}

    void Create(int method, int mode) { ProcessorTest::Create({0, 0, method, mode}); }

    Outline Find(const Mask& mask, const RelRect& rect) {
        return quarry::plain::OutlineOf(*Call({0, mask, rect})->Contour);
    }
    Outline Find(const cv::Mat& mask, const cv::Rect& rect) { return Find(MaskOf(mask), Around(rect, mask.size())); }

    void ExpectRefusal(const Mask& mask, const RelRect& rect, const std::string& message = {}) {
        ProcessorTest::ExpectRefusal<cv::Exception>({0, mask, rect}, message);
    }
};

TEST_F(ObjectContour, IsTheChosenBorderOfRandomMasks) {
    const cv::Size sizes[] = {{1, 1}, {3, 9}, {33, 21}, {64, 48}, {101, 77}};
    for (const int method : {1, 2, 3, 4}) {
        for (const int mode : {0, 1}) {
            Create(method, mode);
            for (uint64_t seed = 0; seed < 100; ++seed) {
                const cv::Size& size = sizes[seed % std::size(sizes)];
                const cv::Mat mask = RandomMask(size, seed);
                cv::RNG random(seed + 500);
                const int x = random.uniform(0, size.width);
                const int y = random.uniform(0, size.height);
                const cv::Rect rect(x, y, random.uniform(1, size.width - x + 1),
                                    random.uniform(1, size.height - y + 1));
                EXPECT_EQ(Find(mask, rect), ObjectOutline(mask, rect, method, mode))
                    << "method " << method << ", mode " << mode << ", seed " << seed << ", " << size << ", " << rect;
            }
        }
    }
}

TEST_F(ObjectContour, IsTheChosenBorderOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        cv::Mat mask;
        cv::cvtColor(frames[i], mask, cv::COLOR_BGR2GRAY);
        cv::threshold(mask, mask, 110, 255, cv::THRESH_BINARY_INV);
        for (const cv::Rect& rect : {cv::Rect(0, 0, 768, 576), cv::Rect(131, 77, 333, 251)}) {
            EXPECT_EQ(Find(mask, rect), ObjectOutline(mask, rect, 2, 0)) << "frame " << i << ", " << rect;
        }
    }
}

TEST_F(ObjectContour, OfAFilledSquareIsItsCorners) {
    const cv::Mat mask = MaskWith({80, 40}, {20, 10, 15, 15});
    const Outline outline = Find(mask, {16, 5, 30, 30});
    const std::vector<float> corners = {20 / 80.0F, 10 / 40.0F, 20 / 80.0F, 24 / 40.0F,
                                        34 / 80.0F, 24 / 40.0F, 34 / 80.0F, 10 / 40.0F};
    EXPECT_EQ(outline.places, corners);
    EXPECT_EQ(outline.area, 14 * 14 / 3200.0F);
    EXPECT_EQ(outline.perimeter, 4 * 14 / 80.0F);
}

TEST_F(ObjectContour, IsMeasuredByTheFramesAreaAndByItsWidthAlone) {
    const Outline outline = Find(MaskWith({640, 480}, {100, 50, 101, 201}), {90, 40, 200, 300});
    EXPECT_EQ(outline.area, 100 * 200 / 307200.0F);
    EXPECT_EQ(outline.perimeter, 600 / 640.0F);
}

TEST_F(ObjectContour, IsTheSameThroughDifferentRectangles) {
    const cv::Mat mask = MaskWith({80, 40}, {20, 10, 15, 15});
    const Outline outline = Find(mask, {20, 10, 15, 15});
    EXPECT_EQ(outline.places.size(), 8U);
    EXPECT_EQ(Find(mask, {16, 5, 30, 30}), outline);
    EXPECT_EQ(Find(mask, {0, 0, 80, 40}), outline);
}

TEST_F(ObjectContour, IsCutAtTheRectangle) {
    const cv::Mat mask = MaskWith({80, 40}, {0, 0, 80, 40});
    const Outline outline = Find(mask, {20, 10, 11, 6});
    EXPECT_EQ(outline.area, 10 * 5 / 3200.0F);
    EXPECT_EQ(outline.places[0], 20 / 80.0F);
}

TEST_F(ObjectContour, TruncatesItsRectangle) {
    // From 19.9 to the pixel before 19 + 11.9, truncated each for itself: columns 19 to 29.
    const cv::Mat mask = MaskWith({80, 40}, {0, 0, 80, 40});
    const RelRect rect{19.9F / 80, 9.9F / 40, 11.9F / 80, 6.9F / 40};
    EXPECT_EQ(Find(MaskOf(mask), rect), ObjectOutline(mask, {19, 9, 11, 6}, 2, 0));
}

TEST_F(ObjectContour, DividesItsAreaInSinglePrecision) {
    // The frame has more pixels than a float can count, which shows in the last bit.
    const cv::Mat mask = MaskWith({4099, 4099}, {7, 5, 11, 11});
    const float divided = 100.0F / (4099.0F * 4099.0F);
    ASSERT_NE(divided, static_cast<float>(100.0 / (4099.0 * 4099.0)));
    EXPECT_EQ(Find(mask, {0, 0, 40, 40}).area, divided);
}

TEST_F(ObjectContour, DividesItsPerimeterInSinglePrecision) {
    Create(cv::CHAIN_APPROX_NONE, 1);
    int telling = 0;
    for (uint64_t seed = 0; seed < 200; ++seed) {
        const cv::Mat mask = RandomMask({61, 47}, seed);
        const std::vector<cv::Point> points = quarry::plain::ChosenBorder(mask, {0, 0, 61, 47}, 1, 1);
        ASSERT_FALSE(points.empty()) << "seed " << seed;
        const double length = cv::arcLength(points, true);
        const float divided = static_cast<float>(length) / 61.0F;
        telling += divided != static_cast<float>(length / 61.0) ? 1 : 0;
        EXPECT_EQ(Find(mask, {0, 0, 61, 47}).perimeter, divided) << "seed " << seed;
    }
    EXPECT_GT(telling, 0) << "no perimeter tells single from double precision";
}

TEST_F(ObjectContour, IsEmptyWhereTheRectangleHoldsNothing) {
    const cv::Mat mask = MaskWith({80, 40}, {20, 10, 15, 15});
    auto result = Call({0, MaskOf(mask), Around({40, 5, 30, 30}, mask.size())});
    EXPECT_EQ(result->Status, 0);
    ASSERT_NE(result->Contour, nullptr);
    EXPECT_NE(result->Contour->Points, nullptr);
    EXPECT_EQ(quarry::plain::OutlineOf(*result->Contour), Outline());
}

TEST_F(ObjectContour, IsEmptyInAModeThatNothingKnows) {
    for (const int mode : {2, 7, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        Create(2, mode);
        EXPECT_EQ(Find(MaskWith({80, 40}, {20, 10, 15, 15}), {0, 0, 80, 40}), Outline()) << "mode " << mode;
    }
}

TEST_F(ObjectContour, OfALineIsEmptyByAreaAndTheLineByItsDiagonal) {
    const cv::Mat mask = MaskWith({80, 40}, {20, 10, 15, 1});
    EXPECT_EQ(Find(mask, {0, 0, 80, 40}), Outline());
    Create(2, 1);
    const Outline line{{20 / 80.0F, 10 / 40.0F, 34 / 80.0F, 10 / 40.0F}, 0.0F, 28 / 80.0F};
    EXPECT_EQ(Find(mask, {0, 0, 80, 40}), line);
}

TEST_F(ObjectContour, OfASinglePixelIsThatPointByItsDiagonal) {
    Create(2, 1);
    const Outline pixel{{20 / 80.0F, 10 / 40.0F}, 0.0F, 0.0F};
    EXPECT_EQ(Find(MaskWith({80, 40}, {20, 10, 1, 1}), {3, 3, 50, 30}), pixel);
}

TEST_F(ObjectContour, IsEmptyInARectangleWithoutPixels) {
    EXPECT_EQ(Find(MaskWith({80, 40}, {0, 0, 80, 40}), {5, 5, 0, 0}), Outline());
}

TEST_F(ObjectContour, RefusesAnEmptyMask) {
    uint8_t pixel = 1;
    for (uint8_t* const data : {&pixel, static_cast<uint8_t*>(nullptr)}) {
        ExpectRefusal({data, 0, 0}, kEverything);
        ExpectRefusal({data, 0, 5}, kEverything);
        ExpectRefusal({data, 5, 0}, {0, 0, 0, 0});
    }
}

TEST_F(ObjectContour, RefusesANullMaskThatIsNotEmpty) {
    ExpectRefusal({nullptr, 8, 6}, kEverything, "total() == 0 || data != NULL");
    ExpectRefusal({nullptr, 1, 1}, {0, 0, 0, 0}, "total() == 0 || data != NULL");
}

TEST_F(ObjectContour, RefusesARectangleThatDoesNotLieInsideTheMask) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const cv::Mat mask = MaskWith({80, 40}, {20, 10, 15, 15});
    const RelRect outside[] = {
        {-0.1F, 0, 0.5F, 0.5F}, {0, -0.1F, 0.5F, 0.5F}, {0.6F, 0, 0.5F, 0.5F},      {0, 0.6F, 0.5F, 0.5F},
        {0, 0, 1.1F, 1},        {0, 0, 1, 1.1F},        {0.5F, 0.5F, -0.2F, 0.2F},  {0.5F, 0.5F, 0.2F, -0.2F},
        {nan, 0, 0.5F, 0.5F},   {0, 0, nan, 0.5F},      {0, -infinity, 0.5F, 0.5F}, {0, 0, 0.5F, infinity},
        {26843544, 0, 5, 1},    {0, 53687088, 1, 5}};  // the last two wrap in 32 bits
    for (const RelRect& rect : outside) {
        SCOPED_TRACE(testing::Message() << rect.X << ", " << rect.Y << ", " << rect.Width << ", " << rect.Height);
        ExpectRefusal(MaskOf(mask), rect);
    }
}

TEST_F(ObjectContour, RefusesAnApproximationMethodThatOpenCvDoesNotKnow) {
    const cv::Mat mask = MaskWith({80, 40}, {20, 10, 15, 15});
    Find(mask, {0, 0, 80, 40});
    for (const int method : {-1, 0, 6, 99}) {
        SCOPED_TRACE(method);
        Create(method, 0);
        ExpectRefusal(MaskOf(mask), kEverything);
    }
}

}  // namespace
