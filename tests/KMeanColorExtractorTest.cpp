#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/KMeanColorExtractor.h"
#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

using Colors = std::vector<float>;
using Body = std::vector<FloatPoint>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Shoulders, hips, knees and ankles: the keypoints that say where the clothes are.
constexpr std::array<std::size_t, 8> kUsed{5, 6, 11, 12, 13, 14, 15, 16};

Body RandomBody(cv::RNG& random) {
    Body body(17);
    for (FloatPoint& point : body) point = {random.uniform(-0.3F, 1.3F), random.uniform(-0.3F, 1.3F)};
    return body;
}

/// All keypoints nowhere but those of the clothes: column and row of each in pixels of a frame.
Body BodyAt(const std::array<int, 16>& places, const cv::Size& frame) {
    Body body(17, {kNan, kNan});
    for (std::size_t i = 0; i < kUsed.size(); ++i) {
        body[kUsed[i]] = {(static_cast<float>(places[2 * i]) + 0.5F) / static_cast<float>(frame.width),
                          (static_cast<float>(places[2 * i + 1]) + 0.5F) / static_cast<float>(frame.height)};
    }
    return body;
}

/// A body whose torso is the whole frame, and whose legs are its lower half.
Body Filling() {
    Body body(17, {kNan, kNan});
    const FloatPoint used[] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 0.5F}, {1, 0.5F}, {0, 1}, {1, 1}};
    for (std::size_t i = 0; i < kUsed.size(); ++i) body[kUsed[i]] = used[i];
    return body;
}

/// One processor, called through the drivers.
class KMeanColors : public testing::Test {
protected:
    KMeanColors() {
        auto options = FramedOptions<KMeanOptions>(0xA5);
        CreateCVKMeanColorExtractor(&handle, options.record());
    }
    ~KMeanColors() override { Dispose(handle); }

    static Framed<KMeanData> InputOf(const Image& frame, Body& body, int count = 17) {
        auto input = FramedInput<KMeanData>(0xA5);
        input->Image = frame;
        input->Keypoints.Count = count;
        input->Keypoints.Points = body.empty() ? nullptr : body.data();
        return input;
    }

    /// The colours of a body, with OpenCV's random numbers started at a seed.
    Colors ColorsOf(const Image& frame, Body body, int seed = 1, int count = 17) {
        auto input = InputOf(frame, body, count);
        auto result = FramedResult<KMeanResult>(0xA5);
        cv::setRNGSeed(seed);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        EXPECT_EQ(result->Count, 4);
        Colors colors(result->Colors, result->Colors + 12);
        DisposeResult(handle, result.as<ProcessResult>());
        return colors;
    }

    /// A call that must throw, and change nothing.
    template <class Exception>
    void ExpectRefusal(const Image& frame, Body body, const std::string& message = {}) {
        auto input = InputOf(frame, body);
        const std::string said = RefusalOfInput<Exception, KMeanResult>(handle, input);
        EXPECT_TRUE(message.empty() || said == message) << said;
    }

    void* handle = nullptr;
};

/// A coordinate in pixels. What no integer holds counts as the lowest.
double Whole(float relative, int side) {
    const float product = relative * static_cast<float>(side);
    if (!(std::abs(product) < 2147483648.0F)) return -2147483648.0;
    return std::trunc(static_cast<double>(product));
}

struct Corner {
    double x, y;
};

void Fill(cv::Mat& mask, const std::array<Corner, 4>& corners) {
    cv::Point polygon[4];
    for (std::size_t i = 0; i < 4; ++i) {
        polygon[i].x = static_cast<int>(std::min(std::max(corners[i].x, 0.0), mask.cols - 1.0));
        polygon[i].y = static_cast<int>(std::min(std::max(corners[i].y, 0.0), mask.rows - 1.0));
    }
    cv::fillConvexPoly(mask, polygon, 4, cv::Scalar(255), 8, 0);
}

/// The torso and the legs of a body.
std::array<cv::Mat, 2> Masks(const Body& body, const cv::Size& size) {
    std::array<Corner, 17> P{};
    for (std::size_t k = 0; k < P.size(); ++k) P[k] = {Whole(body[k].X, size.width), Whole(body[k].Y, size.height)};
    cv::Mat torso(size, CV_8UC1, cv::Scalar(0));
    Fill(torso, {P[5], P[6], P[12], P[11]});

    const double dx = P[6].x - P[12].x;
    const double dy = P[6].y - P[12].y;
    const double s = 0.25 * std::sqrt(dx * dx + dy * dy);
    const double a = std::trunc(0.5 * s);
    const double b = std::trunc(0.4 * s);
    const double c = std::trunc(0.3 * s);
    const double e1 = std::trunc(0.15 * std::abs(P[13].y - P[15].y));
    const double e2 = std::trunc(0.15 * std::abs(P[14].y - P[16].y));
    cv::Mat legs(size, CV_8UC1, cv::Scalar(0));
    Fill(legs, {{{P[11].x - a, P[11].y}, {P[11].x + a, P[11].y}, {P[13].x + b, P[13].y}, {P[13].x - b, P[13].y}}});
    Fill(legs, {{{P[12].x - a, P[12].y}, {P[12].x + a, P[12].y}, {P[14].x + b, P[14].y}, {P[14].x - b, P[14].y}}});
    Fill(legs,
         {{{P[13].x - b, P[13].y}, {P[13].x + b, P[13].y}, {P[15].x + c, P[15].y - e1}, {P[15].x - c, P[15].y - e1}}});
    Fill(legs,
         {{{P[14].x - b, P[14].y}, {P[14].x + b, P[14].y}, {P[16].x + c, P[16].y - e2}, {P[16].x - c, P[16].y - e2}}});
    return {torso, legs};
}

/// The two colours of an area; none of one that is too small.
std::optional<Colors> Clustered(const cv::Mat& frame, const cv::Mat& mask) {
    cv::Mat samples(0, 3, CV_32F);
    for (int i = 0; i < static_cast<int>(frame.total()); ++i) {
        if (mask.data[i] == 0) continue;
        const uchar* const pixel = frame.data + std::ptrdiff_t{3} * i;
        samples.push_back(cv::Mat(cv::Matx13f(pixel[0], pixel[1], pixel[2])));
    }
    if (samples.rows < 2) return std::nullopt;
    std::vector<int> labels;
    cv::Mat centers;
    cv::kmeans(samples, 2, labels, cv::TermCriteria(3, 10, 1.0), 10, 2, centers);
    const bool zeroFirst = std::count(labels.begin(), labels.end(), 1) < std::count(labels.begin(), labels.end(), 0);
    Colors colors;
    for (const int row : {zeroFirst ? 0 : 1, zeroFirst ? 1 : 0}) {
        for (const int channel : {2, 1, 0}) colors.push_back(centers.at<float>(row, channel) / 255.0F);
    }
    return colors;
}

/// The four colours, with OpenCV's random numbers started at a seed; none where an area is too small.
std::optional<Colors> Reference(const cv::Mat& frame, const Body& body, int seed) {
    cv::setRNGSeed(seed);
    Colors colors;
    for (const cv::Mat& mask : Masks(body, frame.size())) {
        const std::optional<Colors> area = Clustered(frame, mask);
        if (!area) return std::nullopt;
        colors.insert(colors.end(), area->begin(), area->end());
    }
    return colors;
}

Colors ColorsOfBytes(const std::vector<cv::Vec3b>& pixels) {
    Colors colors;
    for (const cv::Vec3b& pixel : pixels) {
        for (const int channel : {2, 1, 0}) colors.push_back(static_cast<float>(pixel[channel]) / 255.0F);
    }
    return colors;
}

void ExpectNear(const Colors& colors, const Colors& expected) {
    ASSERT_EQ(colors.size(), expected.size());
    for (std::size_t i = 0; i < colors.size(); ++i) EXPECT_NEAR(colors[i], expected[i], 1e-4) << "float " << i;
}

TEST_F(KMeanColors, EqualThePlainStepsOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 2}, {2, 1}, {1, 9}, {9, 1}, {2, 2}, {17, 13}, {64, 48}, {101, 133}};
    for (const cv::Size& size : sizes) {
        int compared = 0;
        for (int seed = 1; seed <= 30; ++seed) {
            SCOPED_TRACE(testing::Message() << size << ", seed " << seed);
            const cv::Mat frame = RandomFrame(size.width, size.height, static_cast<uint64_t>(seed));
            cv::RNG random(static_cast<uint64_t>(seed));
            const Body body = RandomBody(random);
            const std::optional<Colors> expected = Reference(frame, body, seed);
            if (expected) {
                EXPECT_EQ(ColorsOf(ImageOf(frame), body, seed), *expected);
                ++compared;
            } else {
                ExpectRefusal<cv::Exception>(ImageOf(frame), body);
            }
        }
        EXPECT_GT(compared, 0) << "no body in " << size << " has colours";
    }
}

TEST_F(KMeanColors, EqualThePlainStepsOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(4);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const int x = 100 + 150 * static_cast<int>(i);
        const Body body = BodyAt({x, 200, x + 40, 205, x + 5, 290, x + 35, 290,  //
                                  x, 350, x + 45, 345, x - 10, 420, x + 50, 425},
                                 frames[i].size());
        const std::optional<Colors> expected = Reference(frames[i], body, 7);
        ASSERT_TRUE(expected.has_value());
        EXPECT_EQ(ColorsOf(ImageOf(frames[i]), body, 7), *expected) << "frame " << i;
    }
}

TEST_F(KMeanColors, AreTheBytesInReverseOrderFromZeroToOne) {
    const cv::Mat frame(40, 30, CV_8UC3, cv::Scalar(10, 20, 30));
    const cv::Vec3b pixel(10, 20, 30);
    ExpectNear(ColorsOf(ImageOf(frame), Filling()), ColorsOfBytes({pixel, pixel, pixel, pixel}));
}

TEST_F(KMeanColors, AreThoseOfTheTorsoBeforeThoseOfTheLegsLargerClusterFirst) {
    const cv::Vec3b shirt(200, 30, 40);
    const cv::Vec3b badge(10, 250, 240);
    const cv::Vec3b trousers(90, 90, 20);
    const cv::Vec3b patch(0, 0, 130);
    const cv::Size size(100, 200);
    cv::Mat frame(size, CV_8UC3, cv::Scalar::all(255));
    frame(cv::Rect(30, 20, 41, 80)) = cv::Scalar(shirt);
    frame(cv::Rect(40, 40, 10, 10)) = cv::Scalar(badge);
    frame(cv::Rect(0, 100, 100, 100)) = cv::Scalar(trousers);
    frame(cv::Rect(30, 130, 40, 8)) = cv::Scalar(patch);
    // The row of the hips, the first of the trousers, is one of both areas.
    const Body body = BodyAt({30, 20, 70, 20, 30, 100, 70, 100, 40, 150, 60, 150, 40, 190, 60, 190}, size);
    const Colors expected = ColorsOfBytes({shirt, badge, trousers, patch});
    for (int seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const Colors colors = ColorsOf(ImageOf(frame), body, seed);
        for (std::size_t i = 0; i < colors.size(); ++i) EXPECT_NEAR(colors[i], expected[i], 0.05) << "float " << i;
    }
}

TEST_F(KMeanColors, OfEqualCountsStartWithTheSecondCenter) {
    cv::Mat frame(20, 30, CV_8UC3, cv::Scalar(10, 20, 30));
    frame(cv::Rect(15, 0, 15, 20)) = cv::Scalar(200, 100, 50);
    int darkFirst = 0;
    int lightFirst = 0;
    for (int seed = 1; seed <= 40; ++seed) {
        cv::setRNGSeed(seed);
        cv::Mat samples;
        frame.convertTo(samples, CV_32F);
        cv::Mat labels;
        cv::Mat centers;
        cv::kmeans(samples.reshape(1, 600), 2, labels, cv::TermCriteria(3, 10, 1.0), 10, 2, centers);
        ASSERT_EQ(cv::countNonZero(labels), 300);
        const Colors colors = ColorsOf(ImageOf(frame), Filling(), seed);
        for (int channel = 0; channel < 3; ++channel) {
            const auto i = static_cast<std::size_t>(2 - channel);
            EXPECT_EQ(colors[i], centers.at<float>(1, channel) / 255.0F) << "seed " << seed;
            EXPECT_EQ(colors[3 + i], centers.at<float>(0, channel) / 255.0F) << "seed " << seed;
        }
        ++(colors[2] < 0.5F ? darkFirst : lightFirst);
    }
    EXPECT_GT(darkFirst, 0) << "no seed has the dark half first";
    EXPECT_GT(lightFirst, 0) << "no seed has the light half first";
}

TEST_F(KMeanColors, OfTwoPixelsAreThose) {
    cv::Mat frame(1, 2, CV_8UC3);
    frame.at<cv::Vec3b>(0, 0) = {10, 20, 30};
    frame.at<cv::Vec3b>(0, 1) = {200, 100, 50};
    Colors colors = ColorsOf(ImageOf(frame), Filling());
    std::sort(colors.begin(), colors.begin() + 6);
    Colors expected = ColorsOfBytes({{10, 20, 30}, {200, 100, 50}});
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(Colors(colors.begin(), colors.begin() + 6), expected);
}

/// Both legs straight down the column 50 of a white frame, the one before the other: from the hips in row 100 over the
/// knees in row 140 to the ankles in row 180. The shoulder is 80 pixels above the hip, so that the legs are 10, 8 and 6
/// pixels wide to each side, and stop 6 pixels above the ankles.
class KMeanLegs : public KMeanColors {
protected:
    /// Whether a red pixel there is one of the legs'.
    bool Contain(const cv::Point& place, const cv::Point& ankle = {50, 180}, const cv::Point& otherAnkle = {50, 180}) {
        cv::Mat frame(size, CV_8UC3, cv::Scalar::all(255));
        frame.at<cv::Vec3b>(place) = {0, 0, 255};
        const Body body = BodyAt(
            {50, 20, 50, 20, 50, 100, 50, 100, 50, 140, 50, 140, ankle.x, ankle.y, otherAnkle.x, otherAnkle.y}, size);
        const Colors colors = ColorsOf(ImageOf(frame), body);
        return colors[10] < 0.5F;
    }

    const cv::Size size{100, 200};
};

TEST_F(KMeanLegs, AreAsWideAsTheirShareOfTheTrunk) {
    const cv::Point inside[] = {{40, 100}, {60, 100}, {42, 140}, {58, 140}, {44, 174}, {56, 174}};
    for (const cv::Point& place : inside) EXPECT_TRUE(Contain(place)) << place;
    const cv::Point outside[] = {{39, 100}, {61, 100}, {41, 140}, {59, 140}, {43, 174}, {57, 174}, {50, 99}};
    for (const cv::Point& place : outside) EXPECT_FALSE(Contain(place)) << place;
}

TEST_F(KMeanLegs, StopAboveTheAnkles) {
    EXPECT_TRUE(Contain({50, 174}));
    EXPECT_FALSE(Contain({50, 175}));
    // Also where the foot is lifted above the knee: each shin ends six pixels above its own ankle.
    EXPECT_TRUE(Contain({80, 94}, {80, 100}));
    EXPECT_FALSE(Contain({80, 93}, {80, 100}));
    EXPECT_TRUE(Contain({20, 94}, {50, 180}, {20, 100}));
    EXPECT_FALSE(Contain({20, 93}, {50, 180}, {20, 100}));
}

TEST_F(KMeanColors, TakeKeypointsBeyondTheFrameAtItsBorder) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    cv::RNG random(2);
    const Body inside = RandomBody(random);
    for (const float beyond : {1.0F, 5.0F, -5.0F, 1e6F, -1e6F, 1e30F, -1e30F, kInfinity, -kInfinity, kNan}) {
        for (const std::size_t keypoint : kUsed) {
            const FloatPoint places[] = {{beyond, 0.2F}, {0.2F, beyond}, {beyond, beyond}};
            for (const FloatPoint& place : places) {
                Body body = inside;
                body[keypoint] = place;
                const std::optional<Colors> expected = Reference(frame, body, 3);
                ASSERT_TRUE(expected.has_value());
                EXPECT_EQ(ColorsOf(ImageOf(frame), body, 3), *expected)
                    << "keypoint " << keypoint << " at (" << place.X << ", " << place.Y << ")";
            }
        }
    }
}

TEST_F(KMeanColors, TakeAKeypointThatIsNotANumberAtTheTopLeftCorner) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    Body body = Filling();
    body[5] = {0.0F, 0.0F};
    const Colors expected = ColorsOf(ImageOf(frame), body);
    for (const FloatPoint& place : {FloatPoint{kNan, kNan}, {kInfinity, 1e30F}, {-kInfinity, -1e30F}}) {
        body[5] = place;
        EXPECT_EQ(ColorsOf(ImageOf(frame), body), expected) << "(" << place.X << ", " << place.Y << ")";
    }
}

TEST(KMeanFilterPolygonsPoints, MovesPointsToTheFramesBorder) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kLargest = std::numeric_limits<int>::max();
    cv::Point points[] = {{0, 0},  {9, 7}, {10, 8}, {-1, 3}, {4, -1}, {kLowest, kLargest}, {kLargest, kLowest},
                          {50, 50}};
    KMeanColorExtractor::FilterPolygonsPoints(points, 7, 10, 8);
    const cv::Point expected[] = {{0, 0}, {9, 7}, {9, 7}, {0, 3}, {4, 0}, {0, 7}, {9, 0}, {50, 50}};
    for (std::size_t i = 0; i < std::size(points); ++i) EXPECT_EQ(points[i], expected[i]) << "point " << i;
}

TEST_F(KMeanColors, DoNotConsultTheNumberOfKeypoints) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    const Colors expected = ColorsOf(ImageOf(frame), Filling());
    for (const int count : {0, 16, -1, static_cast<int>(0xA5A5A5A5), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(ColorsOf(ImageOf(frame), Filling(), 1, count), expected) << count;
    }
}

TEST_F(KMeanColors, DoNotConsultTheOtherKeypoints) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    cv::RNG random(4);
    Body body = Filling();
    const Colors expected = ColorsOf(ImageOf(frame), body);
    for (const int keypoint : {0, 1, 2, 3, 4, 7, 8, 9, 10}) {
        body[static_cast<std::size_t>(keypoint)] = {random.uniform(0.0F, 1.0F), random.uniform(0.0F, 1.0F)};
        EXPECT_EQ(ColorsOf(ImageOf(frame), body), expected) << "keypoint " << keypoint;
    }
}

TEST_F(KMeanColors, RefuseAnAreaOfFewerThanTwoPixels) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    const cv::Mat pixel = RandomFrame(1, 1, 2);
    ExpectRefusal<cv::Exception>(ImageOf(frame), Body(17, {5.0F, 5.0F}));
    ExpectRefusal<cv::Exception>(ImageOf(frame), Body(17, {kNan, kNan}));
    ExpectRefusal<cv::Exception>(ImageOf(pixel), Filling());
    // The legs alone: the torso is a triangle.
    Body body(17, {5.0F, 5.0F});
    body[5] = {0.0F, 0.0F};
    body[6] = {0.5F, 0.0F};
    EXPECT_GT(cv::countNonZero(Masks(body, frame.size())[0]), 1);
    ExpectRefusal<cv::Exception>(ImageOf(frame), body);
}

TEST_F(KMeanColors, RefuseAFrameWithoutPixels) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(40, 0), cv::Size(0, 30), cv::Size(-40, -30)}) {
        SCOPED_TRACE(testing::Message() << size);
        ExpectRefusal<cv::Exception>({frame.data, size.width, size.height, 120, 0}, Filling());
    }
    ExpectRefusal<cv::Exception>({nullptr, 40, 30, 120, 0}, Filling());
    ExpectRefusal<cv::Exception>({nullptr, 0, 0, 0, 0}, Filling());
}

TEST_F(KMeanColors, RefuseNullKeypoints) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {},
                                         "KMeanData.Keypoints.Points is null; 17 points are needed");
}

}  // namespace
