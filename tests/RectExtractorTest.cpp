#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "plain/RectExtractor.h"
#include "support/Allocations.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using quarry::plain::Cut;
using quarry::plain::RadiansInSingle;
using quarry::plain::WarpedBy;

constexpr uint16_t kNearest = 0;
constexpr uint16_t kBilinear = 1;

/// For messages.
std::string Said(const Cut& cut) {
    std::ostringstream out;
    out << cut.width << " x " << cut.height << " around (" << cut.centerX << ", " << cut.centerY << "), " << cut.angle
        << " degrees";
    return out.str();
}

cv::Mat Reference(const cv::Mat& frame, const Cut& cut, int interpolation) {
    return quarry::plain::Extracted(frame, cut, interpolation);
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
}

Cut RandomCut(const cv::Size& frame, cv::RNG& random) {
    return {random.uniform(-5, frame.width + 5), random.uniform(-5, frame.height + 5), random.uniform(1, 90),
            random.uniform(1, 90), random.uniform(-400.0, 400.0)};
}

class RectExtractor : public ProcessorTest<operations::RectExtractor> {
protected:
    static Input InputOf(const Image& image, const Cut& cut) {
        const auto narrowed = [](int value) { return static_cast<int16_t>(value); };
        return {
            0,        image, narrowed(cut.centerX), narrowed(cut.centerY), narrowed(cut.width), narrowed(cut.height),
            cut.angle};
    }

    /// What is cut out, given back at its end.
    Called<operations::RectExtractor> Extract(int interpolation, const Image& image, const Cut& cut) {
        Create({0, 0, static_cast<uint16_t>(interpolation)});
        return Call(InputOf(image, cut));
    }

    cv::Mat Pixels(int interpolation, const Image& image, const Cut& cut) {
        return PixelsOf(*Extract(interpolation, image, cut)->Image).clone();
    }

    template <class Exception>
    void ExpectRefusal(const Image& image, const Cut& cut, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << image.width << " x " << image.height << ", stride " << image.stride << ": "
                                        << Said(cut));
        Create({0, 0, kBilinear});
        ProcessorTest::ExpectRefusal<Exception>(InputOf(image, cut), message);
    }
};

TEST_F(RectExtractor, EqualsThePlainWarpOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {17, 13}, {64, 48}, {333, 251}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 20; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            cv::RNG random(seed + 1);
            const Cut cut = RandomCut(size, random);
            SCOPED_TRACE(testing::Message() << size << ", seed " << seed << ", " << Said(cut));
            EXPECT_TRUE(Same(Pixels(kNearest, ImageOf(frame), cut), Reference(frame, cut, cv::INTER_NEAREST)));
            EXPECT_TRUE(Same(Pixels(kBilinear, ImageOf(frame), cut), Reference(frame, cut, cv::INTER_LINEAR)));
        }
    }
}

TEST_F(RectExtractor, EqualsThePlainWarpOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    cv::RNG random(3);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        for (int n = 0; n < 10; ++n) {
            const Cut cut = RandomCut(frames[i].size(), random);
            EXPECT_TRUE(Same(Pixels(kBilinear, ImageOf(frames[i]), cut), Reference(frames[i], cut, cv::INTER_LINEAR)))
                << "frame " << i << ", " << Said(cut);
        }
    }
}

TEST_F(RectExtractor, WithoutAnAngleIsThePartOfTheFrameAroundTheCenter) {
    const cv::Mat frame = RandomFrame(64, 48, 1);
    for (const uint16_t interpolation : {kNearest, kBilinear}) {
        auto even = Extract(interpolation, ImageOf(frame), {30, 20, 16, 10, 0.0});
        EXPECT_TRUE(Same(PixelsOf(*even->Image), frame(cv::Rect(30 - 8, 20 - 5, 16, 10)))) << interpolation;
        auto odd = Extract(interpolation, ImageOf(frame), {30, 20, 17, 11, 0.0});
        EXPECT_TRUE(Same(PixelsOf(*odd->Image), frame(cv::Rect(30 - 8, 20 - 5, 17, 11)))) << interpolation;
    }
}

TEST_F(RectExtractor, ByAQuarterTurnReadsDownTheFrameAlongItsRows) {
    const cv::Mat frame = RandomFrame(64, 48, 1);
    auto turned = Extract(kNearest, ImageOf(frame), {30, 20, 16, 10, 90.0});
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 16; ++x) {
            EXPECT_EQ(PixelsOf(*turned->Image).at<cv::Vec3b>(y, x), frame.at<cv::Vec3b>(20 + (x - 8), 30 - (y - 5)))
                << "(" << x << ", " << y << ")";
        }
    }
}

TEST_F(RectExtractor, InterpolatesOnlyWhenTheOptionIsExactlyOne) {
    const cv::Mat frame = RandomFrame(64, 48, 2);
    const Cut cut{30, 20, 33, 21, 33.0};
    const cv::Mat nearest = Reference(frame, cut, cv::INTER_NEAREST);
    const cv::Mat bilinear = Reference(frame, cut, cv::INTER_LINEAR);
    ASSERT_FALSE(Same(nearest, bilinear));
    for (const int option : {0, 1, 2, 3, 16, 17, 256, 257, 32769, 65535}) {
        EXPECT_TRUE(Same(Pixels(option, ImageOf(frame), cut), option == 1 ? bilinear : nearest))
            << "Interpolation " << option;
    }
}

TEST_F(RectExtractor, NarrowsTheAngleToSinglePrecision) {
    const cv::Mat frame = RandomFrame(101, 99, 3);
    const Cut precise{50, 50, 90, 90, 100000.003};
    const Cut narrowed{50, 50, 90, 90, 100000.0};
    ASSERT_FALSE(Same(WarpedBy(frame, precise, RadiansInSingle(precise.angle), cv::INTER_LINEAR),
                      WarpedBy(frame, narrowed, RadiansInSingle(narrowed.angle), cv::INTER_LINEAR)));
    EXPECT_TRUE(Same(Pixels(kBilinear, ImageOf(frame), precise), Pixels(kBilinear, ImageOf(frame), narrowed)));
}

TEST_F(RectExtractor, TakesTheRadiansInSinglePrecision) {
    const cv::Mat frame = RandomFrame(101, 99, 3);
    const Cut cut{50, 50, 90, 90, 100001.0};
    const cv::Mat expected = WarpedBy(frame, cut, RadiansInSingle(cut.angle), cv::INTER_LINEAR);
    ASSERT_FALSE(Same(WarpedBy(frame, cut, cut.angle * CV_PI / 180.0, cv::INTER_LINEAR), expected));
    EXPECT_TRUE(Same(Pixels(kBilinear, ImageOf(frame), cut), expected));
}

TEST_F(RectExtractor, IsBlackWhereTheRectangleLeavesTheFrame) {
    const cv::Mat white(20, 30, CV_8UC3, cv::Scalar::all(255));
    for (const uint16_t interpolation : {kNearest, kBilinear}) {
        auto corner = Extract(interpolation, ImageOf(white), {0, 0, 10, 8, 0.0});
        cv::Mat expected(8, 10, CV_8UC3, cv::Scalar::all(0));
        expected(cv::Rect(5, 4, 5, 4)) = cv::Scalar::all(255);
        EXPECT_TRUE(Same(PixelsOf(*corner->Image), expected)) << interpolation;
        auto outside = Extract(interpolation, ImageOf(white), {-32768, 32767, 10, 8, 45.0});
        EXPECT_TRUE(Same(PixelsOf(*outside->Image), cv::Mat(8, 10, CV_8UC3, cv::Scalar::all(0)))) << interpolation;
    }
}

TEST_F(RectExtractor, OfAnAngleThatIsNotFiniteHasItsSize) {
    const cv::Mat frame = RandomFrame(30, 20, 4);
    for (const double angle : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), 1e300}) {
        auto extract = Extract(kBilinear, ImageOf(frame), {15, 10, 12, 9, angle});
        EXPECT_EQ(extract->Image->width, 12) << angle;
        EXPECT_EQ(extract->Image->height, 9) << angle;
    }
}

TEST_F(RectExtractor, GivesTheRequestedSizeAndTheFramesTimestamp) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    auto extract = Extract(kNearest, ImageOf(frame, 0x8123456789ABCDEF), {8, 6, 11, 5, 10.0});
    EXPECT_EQ(extract->Status, 0);
    EXPECT_EQ(extract->Image->width, 11);
    EXPECT_EQ(extract->Image->height, 5);
    EXPECT_EQ(extract->Image->stride, 33);
    EXPECT_EQ(extract->Image->timestamp, 0x8123456789ABCDEF);
}

TEST_F(RectExtractor, TakesTheStrideFromTheFramesBytesPerPixelAndPacksTheRows) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    const Cut cut{8, 6, 11, 5, 10.0};
    for (const int stride : {51, 52, 67, 68, 84, 85, 200}) {
        SCOPED_TRACE(testing::Message() << "stride " << stride);
        Image image = ImageOf(frame);
        image.stride = stride;
        auto extract = Extract(kNearest, image, cut);
        EXPECT_EQ(extract->Image->stride, stride / 17 * 11);
        EXPECT_TRUE(Same(PixelsOf(*extract->Image), Reference(frame, cut, cv::INTER_NEAREST)));
        const int rest = 5 * (extract->Image->stride - 33);
        EXPECT_EQ(CountFresh(extract->Image->data + std::ptrdiff_t{5} * 33, rest), rest);
    }
}

TEST_F(RectExtractor, GivesAnImageThatIsNotWrittenForAFrameWithoutPixels) {
    cv::Mat frame = RandomFrame(10, 8, 1);
    Image flat = ImageOf(frame, 9);
    flat.height = 0;
    Image null = ImageOf(frame, 9);
    null.data = nullptr;
    for (const Image& image : {flat, null}) {
        auto extract = Extract(kBilinear, image, {5, 4, 7, 6, 30.0});
        EXPECT_EQ(extract->Status, 0);
        EXPECT_EQ(extract->Image->width, 7);
        EXPECT_EQ(extract->Image->height, 6);
        EXPECT_EQ(extract->Image->stride, 21);
        EXPECT_EQ(extract->Image->timestamp, 9U);
        EXPECT_EQ(CountFresh(extract->Image->data, 6 * 21), 6 * 21);
    }
}

TEST_F(RectExtractor, NeedsNoRoomForAnImageThatIsNotWritten) {
    auto extract = Extract(kBilinear, {nullptr, 10, 8, 20, 0}, {5, 4, 7, 6, 30.0});
    EXPECT_EQ(extract->Image->stride, 14);
    EXPECT_EQ(CountFresh(extract->Image->data, 6 * 14), 6 * 14);
}

TEST_F(RectExtractor, GivesAnImageWithoutPixelsForARectangleWithoutArea) {
    const cv::Mat frame = RandomFrame(10, 8, 1);
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 6), cv::Size(7, 0)}) {
        auto extract = Extract(kNearest, ImageOf(frame, 9), {5, 4, size.width, size.height, 30.0});
        EXPECT_EQ(extract->Image->width, size.width) << size;
        EXPECT_EQ(extract->Image->height, size.height) << size;
        EXPECT_EQ(extract->Image->stride, size.width * 3) << size;
        EXPECT_EQ(extract->Image->timestamp, 9U) << size;
        EXPECT_NE(extract->Image->data, nullptr) << size;
    }
}

/// What a call writes to the standard output.
template <class Call>
std::string Printed(Call call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

TEST_F(RectExtractor, PrintsBothSizesWhenTheWarpFails) {
    const cv::Mat wide(1, 32767, CV_8UC3, cv::Scalar::all(1));
    const cv::Mat high(40000, 1, CV_8UC3, cv::Scalar::all(1));
    const auto call = [&](const cv::Mat& frame, const Cut& cut) {
        EXPECT_THROW(Extract(kNearest, ImageOf(frame), cut), cv::Exception);
    };
    EXPECT_EQ(Printed([&] { call(wide, {10, 0, 7, 5, 0.0}); }), "SRC R=1 C=32767\rDST R=5 C=7\r");
    EXPECT_EQ(Printed([&] { call(high, {0, 9, 12, 3, 45.0}); }), "SRC R=40000 C=1\rDST R=3 C=12\r");
}

TEST_F(RectExtractor, GivesOnTheExceptionOfTheWarp) {
    const cv::Mat wide(1, 32767, CV_8UC3, cv::Scalar::all(1));
    const Cut cut{10, 0, 7, 5, 0.0};
    std::string expected;
    try {
        Reference(wide, cut, cv::INTER_LINEAR);
    } catch (const cv::Exception& failure) {
        expected = failure.what();
    }
    ASSERT_FALSE(expected.empty());
    Printed([&] { ExpectRefusal<cv::Exception>(ImageOf(wide), cut, expected); });
}

TEST_F(RectExtractor, PrintsNothingOtherwise) {
    const cv::Mat widest(1, 32766, CV_8UC3, cv::Scalar::all(1));
    EXPECT_EQ(Printed([&] { auto written = Extract(kNearest, ImageOf(widest), {10, 0, 7, 5, 0.0}); }), "");
    EXPECT_EQ(Printed([&] { auto empty = Extract(kNearest, ImageOf(widest), {10, 0, 0, 5, 0.0}); }), "");
    EXPECT_EQ(Printed([&] { ExpectRefusal<std::invalid_argument>({nullptr, 0, 1, 3, 0}, {0, 0, 1, 1, 0.0}); }), "");
}

TEST_F(RectExtractor, RefusesAFrameOfNoWidth) {
    uint8_t pixel[3] = {};
    const std::string message = "RectExtractorData.Image.width is 0; at least 1 is needed";
    ExpectRefusal<std::invalid_argument>({pixel, 0, 1, 3, 0}, {0, 0, 4, 4, 0.0}, message);
    ExpectRefusal<std::invalid_argument>({pixel, 0, 0, 0, 0}, {0, 0, 4, 4, 0.0}, message);
    ExpectRefusal<std::invalid_argument>({nullptr, 0, 0, 0, 0}, {0, 0, 0, 0, 0.0}, message);
}

TEST_F(RectExtractor, RefusesAStrideThatIsTooSmallForThePackedResult) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {50, 34, 17, 1, 0, -51, std::numeric_limits<int>::min()}) {
        Image image = ImageOf(frame);
        image.stride = stride;
        ExpectRefusal<std::invalid_argument>(
            image, {8, 6, 11, 5, 10.0},
            "RectExtractorData.Image.stride is " + std::to_string(stride) + "; at least width x 3 = 51 is needed");
    }
}

TEST_F(RectExtractor, RefusesAStrideWhoseBufferWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({pixel, 1, 1, std::numeric_limits<int>::max(), 0}, {0, 0, 2, 2, 0.0});
    ExpectRefusal<std::invalid_argument>({pixel, 1, 1, 1 << 30, 0}, {0, 0, 1, 4, 0.0});
}

TEST_F(RectExtractor, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(10, 8, 1);
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {5, 4, -3, -2, 0.0},
                                         "RectExtractorData: -3 x -2 pixels; neither may be negative");
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {5, 4, -3, 2, 0.0});
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {5, 4, 3, -32768, 0.0});
    ExpectRefusal<std::invalid_argument>({frame.data, -10, -8, -30, 0}, {5, 4, 3, 2, 0.0},
                                         "RectExtractorData.Image: -10 x -8 pixels; neither may be negative");
}

}  // namespace
