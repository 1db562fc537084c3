#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

constexpr uint16_t kNearest = 0;
constexpr uint16_t kBilinear = 1;

/// A rectangle to cut out of a frame.
struct Cut {
    int centerX, centerY, width, height;
    double angle;
};

std::ostream& operator<<(std::ostream& out, const Cut& cut) {
    return out << cut.width << " x " << cut.height << " around (" << cut.centerX << ", " << cut.centerY << "), "
               << cut.angle << " degrees";
}

/// One extractor, called through the drivers.
class Extractor {
public:
    explicit Extractor(uint16_t interpolation, unsigned char unread = 0xA5) {
        auto options = FramedOptions<RectExtractorOptions>(unread);
        options->Interpolation = interpolation;
        CreateCVRectExtractor(&handle, options.record());
    }
    Extractor(const Extractor&) = delete;
    Extractor& operator=(const Extractor&) = delete;
    ~Extractor() { Dispose(handle); }

    void* handle = nullptr;
};

Framed<RectExtractorData> InputOf(const Image& image, const Cut& cut) {
    auto input = FramedInput<RectExtractorData>(0xA5);
    input->Image = image;
    input->CenterX = static_cast<int16_t>(cut.centerX);
    input->CenterY = static_cast<int16_t>(cut.centerY);
    input->Width = static_cast<int16_t>(cut.width);
    input->Height = static_cast<int16_t>(cut.height);
    input->Angle = cut.angle;
    return input;
}

/// What was cut out, given back at the end.
class Extract {
public:
    Extract(Extractor& extractor, const Image& image, const Cut& cut) : handle(extractor.handle) {
        auto input = InputOf(image, cut);
        Process(handle, input.as<ProcessData>(), record.as<ProcessResult>());
    }
    Extract(const Extract&) = delete;
    Extract& operator=(const Extract&) = delete;
    ~Extract() { DisposeResult(handle, record.as<ProcessResult>()); }

    const Image* operator->() { return record->Image; }

    /// Its pixels, as packed rows; they live as long as this does.
    cv::Mat Pixels() { return {record->Image->height, record->Image->width, CV_8UC3, record->Image->data}; }

    Framed<RectExtractorResult> record = FramedResult<RectExtractorResult>(0xA5);

private:
    void* handle;
};

cv::Mat WarpedBy(const cv::Mat& frame, const Cut& cut, double radians, int interpolation) {
    const int halfWidth = cut.width / 2;
    const int halfHeight = cut.height / 2;
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    const cv::Matx23d matrix(c, -s, cut.centerX - (c * halfWidth - s * halfHeight),  //
                             s, c, cut.centerY - (s * halfWidth + c * halfHeight));
    cv::Mat out;
    cv::warpAffine(frame, out, matrix, cv::Size(cut.width, cut.height), interpolation | cv::WARP_INVERSE_MAP,
                   cv::BORDER_CONSTANT, cv::Scalar(0, 0, 0, 0));
    return out;
}

double RadiansInDouble(double degrees) {
    return degrees * CV_PI / 180.0;
}

double RadiansInSingle(double degrees) {
    return static_cast<double>(static_cast<float>(RadiansInDouble(degrees)));
}

/// The angle in single precision, as degrees and then as radians.
cv::Mat Reference(const cv::Mat& frame, const Cut& cut, int interpolation) {
    const auto degrees = static_cast<double>(static_cast<float>(cut.angle));
    return WarpedBy(frame, cut, RadiansInSingle(degrees), interpolation);
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
}

Cut RandomCut(const cv::Size& frame, cv::RNG& random) {
    return {random.uniform(-5, frame.width + 5), random.uniform(-5, frame.height + 5), random.uniform(1, 90),
            random.uniform(1, 90), random.uniform(-400.0, 400.0)};
}

/// A call that must throw, and change nothing.
template <class Exception>
void ExpectRefusal(const Image& image, const Cut& cut, const std::string& message = {}) {
    SCOPED_TRACE(testing::Message() << image.width << " x " << image.height << ", stride " << image.stride << ": "
                                    << cut);
    const Extractor extractor(kBilinear);
    auto input = InputOf(image, cut);
    const std::string said = RefusalOfInput<Exception, RectExtractorResult>(extractor.handle, input);
    EXPECT_TRUE(message.empty() || said == message) << said;
}

TEST(RectExtractor, EqualsThePlainWarpOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {17, 13}, {64, 48}, {333, 251}};
    Extractor nearest(kNearest);
    Extractor bilinear(kBilinear);
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 20; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            cv::RNG random(seed + 1);
            const Cut cut = RandomCut(size, random);
            SCOPED_TRACE(testing::Message() << size << ", seed " << seed << ", " << cut);
            EXPECT_TRUE(Same(Extract(nearest, ImageOf(frame), cut).Pixels(), Reference(frame, cut, cv::INTER_NEAREST)));
            EXPECT_TRUE(Same(Extract(bilinear, ImageOf(frame), cut).Pixels(), Reference(frame, cut, cv::INTER_LINEAR)));
        }
    }
}

TEST(RectExtractor, EqualsThePlainWarpOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    Extractor bilinear(kBilinear);
    cv::RNG random(3);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        for (int n = 0; n < 10; ++n) {
            const Cut cut = RandomCut(frames[i].size(), random);
            EXPECT_TRUE(
                Same(Extract(bilinear, ImageOf(frames[i]), cut).Pixels(), Reference(frames[i], cut, cv::INTER_LINEAR)))
                << "frame " << i << ", " << cut;
        }
    }
}

TEST(RectExtractor, WithoutAnAngleIsThePartOfTheFrameAroundTheCenter) {
    const cv::Mat frame = RandomFrame(64, 48, 1);
    for (const uint16_t interpolation : {kNearest, kBilinear}) {
        Extractor extractor(interpolation);
        Extract even(extractor, ImageOf(frame), {30, 20, 16, 10, 0.0});
        EXPECT_TRUE(Same(even.Pixels(), frame(cv::Rect(30 - 8, 20 - 5, 16, 10)))) << interpolation;
        Extract odd(extractor, ImageOf(frame), {30, 20, 17, 11, 0.0});
        EXPECT_TRUE(Same(odd.Pixels(), frame(cv::Rect(30 - 8, 20 - 5, 17, 11)))) << interpolation;
    }
}

TEST(RectExtractor, ByAQuarterTurnReadsDownTheFrameAlongItsRows) {
    const cv::Mat frame = RandomFrame(64, 48, 1);
    Extractor extractor(kNearest);
    Extract turned(extractor, ImageOf(frame), {30, 20, 16, 10, 90.0});
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 16; ++x) {
            EXPECT_EQ(turned.Pixels().at<cv::Vec3b>(y, x), frame.at<cv::Vec3b>(20 + (x - 8), 30 - (y - 5)))
                << "(" << x << ", " << y << ")";
        }
    }
}

TEST(RectExtractor, InterpolatesOnlyWhenTheOptionIsExactlyOne) {
    const cv::Mat frame = RandomFrame(64, 48, 2);
    const Cut cut{30, 20, 33, 21, 33.0};
    const cv::Mat nearest = Reference(frame, cut, cv::INTER_NEAREST);
    const cv::Mat bilinear = Reference(frame, cut, cv::INTER_LINEAR);
    ASSERT_FALSE(Same(nearest, bilinear));
    for (const int option : {0, 1, 2, 3, 16, 17, 256, 257, 32769, 65535}) {
        Extractor extractor(static_cast<uint16_t>(option));
        EXPECT_TRUE(Same(Extract(extractor, ImageOf(frame), cut).Pixels(), option == 1 ? bilinear : nearest))
            << "Interpolation " << option;
    }
}

TEST(RectExtractor, DoesNotReadTheRestOfItsOptions) {
    const cv::Mat frame = RandomFrame(64, 48, 2);
    const Cut cut{30, 20, 33, 21, 33.0};
    const unsigned char fills[] = {0x00, 0x01, 0xFF};
    for (const unsigned char fill : fills) {
        Extractor extractor(kBilinear, fill);
        EXPECT_TRUE(Same(Extract(extractor, ImageOf(frame), cut).Pixels(), Reference(frame, cut, cv::INTER_LINEAR)))
            << "filled with " << int{fill};
    }
}

TEST(RectExtractor, NarrowsTheAngleToSinglePrecision) {
    const cv::Mat frame = RandomFrame(101, 99, 3);
    const Cut precise{50, 50, 90, 90, 100000.003};
    const Cut narrowed{50, 50, 90, 90, 100000.0};
    ASSERT_FALSE(Same(WarpedBy(frame, precise, RadiansInSingle(precise.angle), cv::INTER_LINEAR),
                      WarpedBy(frame, narrowed, RadiansInSingle(narrowed.angle), cv::INTER_LINEAR)));
    Extractor extractor(kBilinear);
    EXPECT_TRUE(Same(Extract(extractor, ImageOf(frame), precise).Pixels(),
                     Extract(extractor, ImageOf(frame), narrowed).Pixels()));
}

TEST(RectExtractor, TakesTheRadiansInSinglePrecision) {
    const cv::Mat frame = RandomFrame(101, 99, 3);
    const Cut cut{50, 50, 90, 90, 100001.0};
    const cv::Mat expected = WarpedBy(frame, cut, RadiansInSingle(cut.angle), cv::INTER_LINEAR);
    ASSERT_FALSE(Same(WarpedBy(frame, cut, RadiansInDouble(cut.angle), cv::INTER_LINEAR), expected));
    Extractor extractor(kBilinear);
    EXPECT_TRUE(Same(Extract(extractor, ImageOf(frame), cut).Pixels(), expected));
}

TEST(RectExtractor, IsBlackWhereTheRectangleLeavesTheFrame) {
    const cv::Mat white(20, 30, CV_8UC3, cv::Scalar::all(255));
    for (const uint16_t interpolation : {kNearest, kBilinear}) {
        Extractor extractor(interpolation);
        Extract corner(extractor, ImageOf(white), {0, 0, 10, 8, 0.0});
        cv::Mat expected(8, 10, CV_8UC3, cv::Scalar::all(0));
        expected(cv::Rect(5, 4, 5, 4)) = cv::Scalar::all(255);
        EXPECT_TRUE(Same(corner.Pixels(), expected)) << interpolation;
        Extract outside(extractor, ImageOf(white), {-32768, 32767, 10, 8, 45.0});
        EXPECT_TRUE(Same(outside.Pixels(), cv::Mat(8, 10, CV_8UC3, cv::Scalar::all(0)))) << interpolation;
    }
}

TEST(RectExtractor, OfAnAngleThatIsNotFiniteHasItsSize) {
    const cv::Mat frame = RandomFrame(30, 20, 4);
    Extractor extractor(kBilinear);
    for (const double angle : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), 1e300}) {
        Extract extract(extractor, ImageOf(frame), {15, 10, 12, 9, angle});
        EXPECT_EQ(extract->width, 12) << angle;
        EXPECT_EQ(extract->height, 9) << angle;
    }
}

TEST(RectExtractor, GivesTheRequestedSizeAndTheFramesTimestamp) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    Extractor extractor(kNearest);
    Extract extract(extractor, ImageOf(frame, 0x8123456789ABCDEF), {8, 6, 11, 5, 10.0});
    EXPECT_EQ(extract.record->Status, 0);
    EXPECT_EQ(extract->width, 11);
    EXPECT_EQ(extract->height, 5);
    EXPECT_EQ(extract->stride, 33);
    EXPECT_EQ(extract->timestamp, 0x8123456789ABCDEF);
}

TEST(RectExtractor, TakesTheStrideFromTheFramesBytesPerPixelAndPacksTheRows) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    const Cut cut{8, 6, 11, 5, 10.0};
    Extractor extractor(kNearest);
    for (const int stride : {51, 52, 67, 68, 84, 85, 200}) {
        SCOPED_TRACE(testing::Message() << "stride " << stride);
        Image image = ImageOf(frame);
        image.stride = stride;
        Extract extract(extractor, image, cut);
        EXPECT_EQ(extract->stride, stride / 17 * 11);
        EXPECT_TRUE(Same(extract.Pixels(), Reference(frame, cut, cv::INTER_NEAREST)));
        const int rest = 5 * (extract->stride - 33);
        EXPECT_EQ(CountFresh(extract->data + std::ptrdiff_t{5} * 33, rest), rest);
    }
}

TEST(RectExtractor, GivesAnImageThatIsNotWrittenForAFrameWithoutPixels) {
    cv::Mat frame = RandomFrame(10, 8, 1);
    Image flat = ImageOf(frame, 9);
    flat.height = 0;
    Image null = ImageOf(frame, 9);
    null.data = nullptr;
    Extractor extractor(kBilinear);
    for (const Image& image : {flat, null}) {
        Extract extract(extractor, image, {5, 4, 7, 6, 30.0});
        EXPECT_EQ(extract.record->Status, 0);
        EXPECT_EQ(extract->width, 7);
        EXPECT_EQ(extract->height, 6);
        EXPECT_EQ(extract->stride, 21);
        EXPECT_EQ(extract->timestamp, 9U);
        EXPECT_EQ(CountFresh(extract->data, 6 * 21), 6 * 21);
    }
}

TEST(RectExtractor, NeedsNoRoomForAnImageThatIsNotWritten) {
    Extractor extractor(kBilinear);
    Extract extract(extractor, {nullptr, 10, 8, 20, 0}, {5, 4, 7, 6, 30.0});
    EXPECT_EQ(extract->stride, 14);
    EXPECT_EQ(CountFresh(extract->data, 6 * 14), 6 * 14);
}

TEST(RectExtractor, GivesAnImageWithoutPixelsForARectangleWithoutArea) {
    const cv::Mat frame = RandomFrame(10, 8, 1);
    Extractor extractor(kNearest);
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 6), cv::Size(7, 0)}) {
        Extract extract(extractor, ImageOf(frame, 9), {5, 4, size.width, size.height, 30.0});
        EXPECT_EQ(extract->width, size.width) << size;
        EXPECT_EQ(extract->height, size.height) << size;
        EXPECT_EQ(extract->stride, size.width * 3) << size;
        EXPECT_EQ(extract->timestamp, 9U) << size;
        EXPECT_NE(extract->data, nullptr) << size;
    }
}

TEST(RectExtractor, LeavesThePaddingOfTheHostsRecordAsItIs) {
    const cv::Mat frame = RandomFrame(10, 8, 1);
    Extractor extractor(kNearest);
    Extract extract(extractor, ImageOf(frame), {5, 4, 7, 6, 30.0});
    const auto bytes = extract.record.Bytes();
    for (std::size_t i = 4; i < 8; ++i) EXPECT_EQ(bytes[i], 0xA5) << "byte " << i;
}

TEST(RectExtractor, LeavesTheFrameAsItIs) {
    const cv::Mat frame = RandomFrame(33, 21, 1);
    const cv::Mat before = frame.clone();
    Extractor extractor(kBilinear);
    const Extract extract(extractor, ImageOf(frame), {15, 10, 33, 21, 30.0});
    EXPECT_TRUE(Same(frame, before));
}

TEST(RectExtractor, GivingAResultBackReleasesItAndForgetsIt) {
    const cv::Mat frame = RandomFrame(10, 8, 1);
    const Extractor extractor(kNearest);
    auto input = InputOf(ImageOf(frame), {5, 4, 7, 6, 30.0});
    auto result = FramedResult<RectExtractorResult>();
    for (int call = 0; call < 2; ++call) {
        const std::size_t before = LiveBlocks();
        Process(extractor.handle, input.as<ProcessData>(), result.as<ProcessResult>());
        DisposeResult(extractor.handle, result.as<ProcessResult>());
        EXPECT_EQ(result->Image, nullptr);
        if (call == 1) {
            EXPECT_EQ(LiveBlocks(), before);
        }
    }
}

TEST(RectExtractor, GivingBackAResultWithoutAnImageChangesNothing) {
    const Extractor extractor(kNearest);
    auto result = FramedResult<RectExtractorResult>(0x5A);
    result->Image = nullptr;
    const auto before = result.Bytes();
    DisposeResult(extractor.handle, result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
    DestroyRectExtractorResult(nullptr);
}

/// What a call writes to the standard output.
template <class Call>
std::string Printed(Call call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

TEST(RectExtractor, PrintsBothSizesWhenTheWarpFails) {
    const cv::Mat wide(1, 32767, CV_8UC3, cv::Scalar::all(1));
    const cv::Mat high(40000, 1, CV_8UC3, cv::Scalar::all(1));
    const Extractor extractor(kNearest);
    auto result = FramedResult<RectExtractorResult>();
    const auto call = [&](const cv::Mat& frame, const Cut& cut) {
        auto input = InputOf(ImageOf(frame), cut);
        EXPECT_THROW(Process(extractor.handle, input.as<ProcessData>(), result.as<ProcessResult>()), cv::Exception);
    };
    EXPECT_EQ(Printed([&] { call(wide, {10, 0, 7, 5, 0.0}); }), "SRC R=1 C=32767\rDST R=5 C=7\r");
    EXPECT_EQ(Printed([&] { call(high, {0, 9, 12, 3, 45.0}); }), "SRC R=40000 C=1\rDST R=3 C=12\r");
}

TEST(RectExtractor, GivesOnTheExceptionOfTheWarp) {
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

TEST(RectExtractor, PrintsNothingOtherwise) {
    const cv::Mat widest(1, 32766, CV_8UC3, cv::Scalar::all(1));
    Extractor extractor(kNearest);
    EXPECT_EQ(Printed([&] { const Extract written(extractor, ImageOf(widest), {10, 0, 7, 5, 0.0}); }), "");
    EXPECT_EQ(Printed([&] { const Extract empty(extractor, ImageOf(widest), {10, 0, 0, 5, 0.0}); }), "");
    EXPECT_EQ(Printed([&] { ExpectRefusal<std::invalid_argument>({nullptr, 0, 1, 3, 0}, {0, 0, 1, 1, 0.0}); }), "");
}

TEST(RectExtractor, RefusesAFrameOfNoWidth) {
    uint8_t pixel[3] = {};
    const std::string message = "RectExtractorData.Image.width is 0; at least 1 is needed";
    ExpectRefusal<std::invalid_argument>({pixel, 0, 1, 3, 0}, {0, 0, 4, 4, 0.0}, message);
    ExpectRefusal<std::invalid_argument>({pixel, 0, 0, 0, 0}, {0, 0, 4, 4, 0.0}, message);
    ExpectRefusal<std::invalid_argument>({nullptr, 0, 0, 0, 0}, {0, 0, 0, 0, 0.0}, message);
}

TEST(RectExtractor, RefusesAStrideThatIsTooSmallForThePackedResult) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {50, 34, 17, 1, 0, -51, std::numeric_limits<int>::min()}) {
        Image image = ImageOf(frame);
        image.stride = stride;
        ExpectRefusal<std::invalid_argument>(
            image, {8, 6, 11, 5, 10.0},
            "RectExtractorData.Image.stride is " + std::to_string(stride) + "; at least width x 3 = 51 is needed");
    }
}

TEST(RectExtractor, RefusesAStrideWhoseBufferWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({pixel, 1, 1, std::numeric_limits<int>::max(), 0}, {0, 0, 2, 2, 0.0});
    ExpectRefusal<std::invalid_argument>({pixel, 1, 1, 1 << 30, 0}, {0, 0, 1, 4, 0.0});
}

TEST(RectExtractor, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(10, 8, 1);
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {5, 4, -3, -2, 0.0},
                                         "RectExtractorData: -3 x -2 pixels; neither may be negative");
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {5, 4, -3, 2, 0.0});
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {5, 4, 3, -32768, 0.0});
    ExpectRefusal<std::invalid_argument>({frame.data, -10, -8, -30, 0}, {5, 4, 3, 2, 0.0},
                                         "RectExtractorData.Image: -10 x -8 pixels; neither may be negative");
}

}  // namespace
