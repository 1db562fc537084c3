#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/PixelwiseFire.h"
#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

using Fire = PixelwiseFireProcessor;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const cv::Scalar kFlame(60, 200, 255);

double Above(double value) {
    return std::nextafter(value, kInfinity);
}
double Below(double value) {
    return std::nextafter(value, -kInfinity);
}

struct Color {
    double L, a, b;
};

/// The light of every byte, 0..100.
const std::array<double, 256>& Lights() {
    static const std::array<double, 256> lights = [] {
        std::array<double, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double part = static_cast<double>(i) / 255;
            const double light = part > 0.04045 ? std::pow((part + 0.055) / 1.055, 2.4) : part / 12.92;
            values[i] = light * 100;
        }
        return values;
    }();
    return lights;
}

double PlainRoot(double t) {
    if (t > 0.008856) return std::pow(t, 1.0 / 3.0);
    return 7.787 * t + 16.0 / 116.0;
}

Color PlainLab(int red, int green, int blue) {
    const double r = Lights()[static_cast<std::size_t>(red)];
    const double g = Lights()[static_cast<std::size_t>(green)];
    const double b = Lights()[static_cast<std::size_t>(blue)];
    const double fx = PlainRoot((0.4124 * r + 0.3576 * g + 0.1805 * b) / 95.047);
    const double fy = PlainRoot((0.2126 * r + 0.7152 * g + 0.0722 * b) / 100);
    const double fz = PlainRoot((0.0193 * r + 0.1192 * g + 0.9505 * b) / 108.883);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

/// The rules one by one; the roots are of positive numbers for every a that the first one lets through.
bool PlainIsFlame(const Color& color) {
    const auto& [L, a, b] = color;
    if (a <= -23 || a >= 51) return false;
    if (a > 17.9) {
        if (L <= 59) return false;
    } else if (L <= 34 + std::sqrt(4200 - (a + 42) * (a + 42))) {
        return false;
    }
    const double upper = a > 5 ? -0.54 * a + 92.5 : std::sqrt(1600 - (a + 7) * (a + 7)) + 59.5;
    if (upper <= L) return false;
    const double yellow = a > 4 ? 1.1 * a - 12 : 0.13 * ((a - 6) * (a - 6)) - 8;
    return b > yellow && L > -0.95 * b + 92;
}

cv::Mat PlainCandidates(const cv::Mat& frame) {
    cv::Mat candidates(frame.size(), CV_8U);
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) {
            const auto& pixel = frame.at<cv::Vec3b>(y, x);
            candidates.at<uint8_t>(y, x) = PlainIsFlame(PlainLab(pixel[2], pixel[1], pixel[0])) ? 255 : 0;
        }
    }
    return candidates;
}

/// Twice that of the polygon through the points.
int64_t TwiceTheArea(const std::vector<cv::Point>& points) {
    int64_t sum = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const cv::Point& next = points[(i + 1) % points.size()];
        sum += int64_t{points[i].x} * next.y - int64_t{next.x} * points[i].y;
    }
    return std::abs(sum);
}

/// Every pixel of the mask spread over an ellipse about it, 11 pixels wide and high.
cv::Mat PlainGrown(const cv::Mat& mask) {
    constexpr int kHalfWidths[] = {0, 3, 4, 5, 5, 5, 5, 5, 4, 3, 0};
    cv::Mat grown = cv::Mat::zeros(mask.size(), CV_8U);
    for (int y = 0; y < mask.rows; ++y) {
        for (int x = 0; x < mask.cols; ++x) {
            if (mask.at<uint8_t>(y, x) == 0) continue;
            for (int dy = -5; dy <= 5; ++dy) {
                const int half = kHalfWidths[dy + 5];
                const cv::Rect run = cv::Rect(x - half, y + dy, 2 * half + 1, 1) & cv::Rect(0, 0, mask.cols, mask.rows);
                if (!run.empty()) std::memset(grown.ptr(run.y) + run.x, 255, static_cast<std::size_t>(run.width));
            }
        }
    }
    return grown;
}

cv::Mat Reference(const cv::Mat& frame) {
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(PlainCandidates(frame), contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    int64_t best = 0;
    std::vector<cv::Point> largest;
    for (const auto& contour : contours) {
        if (TwiceTheArea(contour) <= best) continue;
        best = TwiceTheArea(contour);
        largest = contour;
    }
    cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8U);
    if (best > 8) cv::drawContours(mask, std::vector<std::vector<cv::Point>>{largest}, 0, cv::Scalar(255), cv::FILLED);
    return PlainGrown(PlainGrown(mask));
}

/// A black frame with boxes in the colour of flames.
cv::Mat Flames(const cv::Size& size, const std::vector<cv::Rect>& boxes) {
    cv::Mat frame = cv::Mat::zeros(size, CV_8UC3);
    for (const cv::Rect& box : boxes) frame(box).setTo(kFlame);
    return frame;
}

/// A mask that holds these boxes, grown.
cv::Mat Grown(const cv::Size& size, const std::vector<cv::Rect>& boxes) {
    cv::Mat mask = cv::Mat::zeros(size, CV_8U);
    for (const cv::Rect& box : boxes) mask(box).setTo(255);
    return PlainGrown(PlainGrown(mask));
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && std::memcmp(a.data, b.data, a.total()) == 0;
}

/// One processor, called through the drivers.
class PixelwiseFire : public testing::Test {
protected:
    PixelwiseFire() { handle = Create(0xA5); }
    ~PixelwiseFire() override { Dispose(handle); }

    static void* Create(unsigned char unread) {
        auto options = FramedOptions<ProcessOptions>(unread);
        void* processor = nullptr;
        CreateCVPixelwiseFireProcessor(&processor, options.record());
        return processor;
    }

    static cv::Mat Mark(void* processor, const Image& frame, unsigned char unread = 0xA5) {
        auto input = FramedInput<FireInputData>(unread);
        input->Frame = frame;
        auto result = FramedResult<FireOutputData>(0xA5);
        Process(processor, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        cv::Mat mask =
            cv::Mat(result->FireMask->height, result->FireMask->width, CV_8U, result->FireMask->data).clone();
        DisposeResult(processor, result.as<ProcessResult>());
        return mask;
    }
    cv::Mat Mark(const cv::Mat& frame) { return Mark(handle, ImageOf(frame)); }

    /// What a call that must throw leaves in a record filled with 0xA5, and in memory.
    template <class Exception>
    void ExpectRefusal(const Image& frame, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << frame.width << " x " << frame.height);
        auto input = FramedInput<FireInputData>();
        input->Frame = frame;
        auto result = FramedResult<FireOutputData>(0xA5);
        // Once before it counts: OpenCV keeps what it sets up at a first call.
        EXPECT_THROW(Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()), Exception);
        const std::size_t before = LiveBlocks();
        try {
            Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
            ADD_FAILURE() << "no exception";
        } catch (const Exception& refusal) {
            if (!message.empty()) {
                EXPECT_EQ(refusal.what(), message);
            }
        }
        EXPECT_EQ(LiveBlocks(), before);
        for (const unsigned char byte : result.Bytes()) EXPECT_EQ(byte, 0xA5);
    }

    void* handle = nullptr;
};

TEST(FlameColor, FollowsTheRulesForEveryColor) {
    int differing = 0;
    int flames = 0;
    for (int color = 0; color < 1 << 24; ++color) {
        const int red = color >> 16;
        const int green = color >> 8 & 0xFF;
        const int blue = color & 0xFF;
        const auto [L, a, b] = Fire::RGB2Lab(red, green, blue);
        const bool expected = PlainIsFlame(PlainLab(red, green, blue));
        if (expected) ++flames;
        if (Fire::ColorIsFlame(L, a, b) != expected && ++differing <= 5) {
            ADD_FAILURE() << "red " << red << ", green " << green << ", blue " << blue;
        }
    }
    EXPECT_EQ(differing, 0);
    EXPECT_GT(flames, 0);
    RecordProperty("differing", differing);
    RecordProperty("flames", flames);
}

TEST(FlameColor, IsConvertedBitForBit) {
    for (int red = 0; red < 256; red += 5) {
        for (int green = 0; green < 256; green += 3) {
            for (int blue = 0; blue < 256; blue += 5) {
                const auto [L, a, b] = Fire::RGB2Lab(red, green, blue);
                const Color expected = PlainLab(red, green, blue);
                ASSERT_TRUE(L == expected.L && a == expected.a && b == expected.b)
                    << red << ", " << green << ", " << blue;
            }
        }
    }
}

TEST(FlameColor, OfGreyIsAmongTheLightOnesButNotWhite) {
    for (int grey = 0; grey < 256; ++grey) {
        const auto [L, a, b] = Fire::RGB2Lab(grey, grey, grey);
        EXPECT_EQ(Fire::ColorIsFlame(L, a, b), L > 92 && L < 98.88) << grey << ", L " << L;
    }
    EXPECT_FALSE(Fire::ColorIsFlame(100, 0, 0));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(83.37, 0));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(83.35, 0));
}

TEST(FlameColor, LightnessIsJudgedBetweenTwoBoundsOfA) {
    EXPECT_FALSE(Fire::ColorLabLIsFlame(96.05, -23));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(96.05, Above(-23)));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(60, Below(51)));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(60, 51));
    for (const double L : {0.0, 59.5, 60.0, 90.0, 100.0}) EXPECT_FALSE(Fire::ColorLabLIsFlame(L, 60)) << L;
}

TEST(FlameColor, LightnessMustBeAboveItsLowerBound) {
    EXPECT_FALSE(Fire::ColorLabLIsFlame(59, 18));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Above(59), 18));
    const double bound = 34 + std::sqrt(4200.0 - 42 * 42);
    EXPECT_FALSE(Fire::ColorLabLIsFlame(bound, 0));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Above(bound), 0));
    // At 17.9 the curve still holds, which is lower there.
    EXPECT_TRUE(Fire::ColorLabLIsFlame(58.9, 17.9));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(58.9, Above(17.9)));
}

TEST(FlameColor, LightnessMustBeBelowItsUpperBound) {
    const double straight = -0.54 * 20 + 92.5;
    EXPECT_FALSE(Fire::ColorLabLIsFlame(straight, 20));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Below(straight), 20));
    const double curved = std::sqrt(1600.0 - 7 * 7) + 59.5;
    EXPECT_FALSE(Fire::ColorLabLIsFlame(curved, 0));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Below(curved), 0));
    // At 5 the curve still holds, which is higher there.
    EXPECT_TRUE(Fire::ColorLabLIsFlame(95, 5));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(95, Above(5)));
}

TEST(FlameColor, YellowMustBeAboveItsBound) {
    const double straight = 1.1 * 10 - 12;
    EXPECT_FALSE(Fire::ColorLabBIsFlame(10, straight));
    EXPECT_TRUE(Fire::ColorLabBIsFlame(10, Above(straight)));
    const double curved = 0.13 * 36 - 8;
    EXPECT_FALSE(Fire::ColorLabBIsFlame(0, curved));
    EXPECT_TRUE(Fire::ColorLabBIsFlame(0, Above(curved)));
    // At 4 the curve still holds, which is higher there.
    EXPECT_FALSE(Fire::ColorLabBIsFlame(4, -7.5));
    EXPECT_TRUE(Fire::ColorLabBIsFlame(Above(4), -7.5));
}

TEST(FlameColor, MustBeLightForItsYellow) {
    EXPECT_FALSE(Fire::ColorIsFlame(92, 0, 0));
    EXPECT_TRUE(Fire::ColorIsFlame(Above(92), 0, 0));
    const double bound = -0.95 * 20 + 92;
    EXPECT_FALSE(Fire::ColorIsFlame(bound, 20, 20));
    EXPECT_TRUE(Fire::ColorIsFlame(Above(bound), 20, 20));
}

TEST(FlameColor, NeedsEachOfItsRules) {
    ASSERT_TRUE(Fire::ColorIsFlame(80, 10, 60));
    EXPECT_FALSE(Fire::ColorIsFlame(50, 10, 60));    // too dark for the first
    EXPECT_FALSE(Fire::ColorIsFlame(70, 30, 20.9));  // not yellow enough for the second
    EXPECT_TRUE(Fire::ColorIsFlame(73, 30, 21.1));
    EXPECT_FALSE(Fire::ColorIsFlame(80, 10, 10));  // too dark for the third
}

TEST(FlameColor, IsNeverNotANumber) {
    EXPECT_FALSE(Fire::ColorLabLIsFlame(kNan, 10));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(kNan, 30));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(80, kNan));
    EXPECT_FALSE(Fire::ColorLabBIsFlame(kNan, 60));
    EXPECT_FALSE(Fire::ColorLabBIsFlame(10, kNan));
    EXPECT_FALSE(Fire::ColorLabBIsFlame(0, kNan));
    EXPECT_FALSE(Fire::ColorIsFlame(kNan, 10, 60));
    EXPECT_FALSE(Fire::ColorIsFlame(80, kNan, 60));
    EXPECT_FALSE(Fire::ColorIsFlame(80, 10, kNan));
}

TEST_F(PixelwiseFire, MarksTheLargestRegionOfFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {3, 3}, {4, 3}, {17, 13}, {64, 48}, {133, 71}};
    for (const cv::Size& size : sizes) {
        for (int share = 1; share <= 9; ++share) {  // of ten pixels that are flame
            cv::Mat draw(size, CV_8U);
            cv::RNG(static_cast<uint64_t>(share)).fill(draw, cv::RNG::UNIFORM, 0, 10);
            cv::Mat frame = cv::Mat::zeros(size, CV_8UC3);
            frame.setTo(kFlame, draw < share);
            EXPECT_TRUE(Same(Mark(frame), Reference(frame))) << size << ", " << share << " of ten";
        }
    }
}

TEST_F(PixelwiseFire, MarksTheLargestRegionOfPictures) {
    int marked = 0;
    for (const char* const name : {"fruits.jpg", "orange.jpg", "messi5.jpg", "cards.png"}) {
        const cv::Mat frame = cv::imread((MediaDirectory() / name).string());
        if (frame.empty()) GTEST_SKIP() << "no pictures in " << MediaDirectory();
        const cv::Mat expected = Reference(frame);
        EXPECT_TRUE(Same(Mark(frame), expected)) << name;
        if (cv::countNonZero(expected) > 0) ++marked;
    }
    EXPECT_GT(marked, 0);
}

TEST_F(PixelwiseFire, OfAFrameWithoutFlamesIsZeros) {
    for (const cv::Scalar& color : {cv::Scalar::all(0), cv::Scalar::all(255), cv::Scalar(255, 60, 0)}) {
        const cv::Mat mask = Mark(cv::Mat(31, 47, CV_8UC3, color));
        EXPECT_EQ(mask.size(), cv::Size(47, 31)) << color;
        EXPECT_EQ(cv::countNonZero(mask), 0) << color;
    }
}

TEST_F(PixelwiseFire, IgnoresRegionsOfAnAreaOfFourOrLess) {
    const cv::Size size(40, 40);
    for (const cv::Size& box : {cv::Size(1, 1), cv::Size(2, 2), cv::Size(3, 3), cv::Size(5, 2), cv::Size(40, 1)}) {
        EXPECT_EQ(cv::countNonZero(Mark(Flames(size, {{{0, 7}, box}}))), 0) << box;
    }
    for (const cv::Size& box : {cv::Size(4, 3), cv::Size(3, 4), cv::Size(6, 2)}) {
        const cv::Rect place({12, 17}, box);
        EXPECT_TRUE(Same(Mark(Flames(size, {place})), Grown(size, {place}))) << box;
    }
}

TEST_F(PixelwiseFire, GrowsByTenPixelsOnEverySide) {
    const cv::Mat mask = Mark(Flames({60, 50}, {{20, 20, 7, 5}}));
    std::vector<cv::Point> marked;
    cv::findNonZero(mask, marked);
    EXPECT_EQ(cv::boundingRect(marked), cv::Rect(10, 10, 27, 25));
    EXPECT_TRUE(Same(mask, Grown({60, 50}, {{20, 20, 7, 5}})));
    for (const cv::Point& pixel : marked) EXPECT_EQ(mask.at<uint8_t>(pixel), 255) << pixel;
}

TEST_F(PixelwiseFire, IsCutAtTheFramesEdges) {
    for (const cv::Rect& box : {cv::Rect(0, 0, 5, 5), cv::Rect(35, 25, 5, 5), cv::Rect(0, 0, 40, 30)}) {
        EXPECT_TRUE(Same(Mark(Flames({40, 30}, {box})), Grown({40, 30}, {box}))) << box;
    }
}

TEST_F(PixelwiseFire, KeepsOnlyTheLargerOfTwoRegions) {
    const cv::Rect larger(80, 10, 9, 9);
    const cv::Rect smaller(10, 60, 9, 8);
    EXPECT_TRUE(Same(Mark(Flames({120, 90}, {larger, smaller})), Grown({120, 90}, {larger})));
    const cv::Rect largerBelow(10, 60, 9, 10);
    EXPECT_TRUE(Same(Mark(Flames({120, 90}, {larger, largerBelow})), Grown({120, 90}, {largerBelow})));
}

TEST_F(PixelwiseFire, KeepsTheEarlierContourOnATie) {
    const cv::Mat frame = Flames({120, 90}, {{80, 10, 9, 9}, {10, 60, 9, 9}});
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(PlainCandidates(frame), contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    ASSERT_EQ(contours.size(), 2U);
    EXPECT_TRUE(Same(Mark(frame), Grown({120, 90}, {cv::boundingRect(contours[0])})));
}

TEST_F(PixelwiseFire, FillsARing) {
    cv::Mat frame = Flames({120, 120}, {{20, 20, 80, 80}});
    frame(cv::Rect(25, 25, 70, 70)).setTo(0);
    frame(cv::Rect(50, 50, 9, 9)).setTo(kFlame);
    EXPECT_TRUE(Same(Mark(frame), Grown({120, 120}, {{20, 20, 80, 80}})));
}

TEST_F(PixelwiseFire, ReadsRowsAsPackedWhateverTheStrideAndTheTimestamp) {
    const cv::Mat frame = Flames({41, 33}, {{12, 10, 7, 5}});
    const cv::Mat expected = Reference(frame);
    for (const int stride : {0, 1, 41, 128, -123}) {
        Image image = ImageOf(frame, ~uint64_t{0});
        image.stride = stride;
        EXPECT_TRUE(Same(Mark(handle, image), expected)) << "stride " << stride;
    }
}

TEST_F(PixelwiseFire, DoesNotReadTheRestOfItsRecords) {
    const cv::Mat frame = Flames({41, 33}, {{12, 10, 7, 5}});
    const unsigned char fills[] = {0x00, 0x01, 0xFF};
    for (const unsigned char fill : fills) {
        void* const other = Create(fill);
        EXPECT_TRUE(Same(Mark(other, ImageOf(frame), fill), Reference(frame))) << "filled with " << int{fill};
        Dispose(other);
    }
}

TEST_F(PixelwiseFire, LeavesTheFrameAsItIs) {
    const cv::Mat frame = Flames({41, 33}, {{12, 10, 7, 5}});
    const cv::Mat before = frame.clone();
    Mark(frame);
    EXPECT_EQ(std::memcmp(frame.data, before.data, before.total() * 3), 0);
}

TEST_F(PixelwiseFire, GivingAResultBackReleasesItAndForgetsIt) {
    const cv::Mat frame = Flames({41, 33}, {{12, 10, 7, 5}});
    Mark(frame);  // warms OpenCV up
    auto input = FramedInput<FireInputData>();
    input->Frame = ImageOf(frame);
    auto result = FramedResult<FireOutputData>(0xA5);
    const std::size_t before = LiveBlocks();
    Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(LiveBlocks(), before + 2);
    for (std::size_t i = 4; i < 8; ++i) EXPECT_EQ(result.Bytes()[i], 0xA5) << "byte " << i;  // padding
    DisposeResult(handle, result.as<ProcessResult>());
    EXPECT_EQ(LiveBlocks(), before);
    EXPECT_EQ(result->FireMask, nullptr);
}

TEST_F(PixelwiseFire, GivingBackAResultWithoutAMaskChangesNothing) {
    auto result = FramedResult<FireOutputData>(0x5A);
    result->FireMask = nullptr;
    const auto before = result.Bytes();
    DisposeResult(handle, result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST_F(PixelwiseFire, RefusesAFrameWithoutPixels) {
    uint8_t pixel[3] = {};
    for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
        for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0)}) {
            ExpectRefusal<cv::Exception>({data, size.width, size.height, 15, 0});
        }
    }
}

TEST_F(PixelwiseFire, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    ExpectRefusal<cv::Exception>({nullptr, 4, 4, 12, 0});
}

TEST_F(PixelwiseFire, RefusesANegativeSize) {
    uint8_t pixels[75] = {};
    for (const cv::Size& size : {cv::Size(-5, 5), cv::Size(5, -5), cv::Size(-5, -5)}) {
        ExpectRefusal<cv::Exception>({pixels, size.width, size.height, 15, 0});
    }
}

TEST_F(PixelwiseFire, RefusesASizeWhoseMaskWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({pixel, 65536, 65537, 196608, 0},
                                         "FireInputData.Frame: 65536 x 65537 pixels; at most 2147483647 are allowed");
}

TEST_F(PixelwiseFire, WorksAfterAFailedCall) {
    const cv::Mat frame = Flames({41, 33}, {{12, 10, 7, 5}});
    ExpectRefusal<cv::Exception>({nullptr, 4, 4, 12, 0});
    EXPECT_TRUE(Same(Mark(frame), Reference(frame)));
}

}  // namespace
