#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "plain/RotationTransformProcessor.h"
#include "support/Allocations.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using quarry::plain::BoxOf;
using quarry::plain::OnCanvas;
using quarry::plain::Resized;

constexpr int kLargest = std::numeric_limits<int32_t>::max();

/// A frame's pixels as an image that says nothing true of its size.
Image Unsized(const cv::Mat& frame, uint64_t timestamp = 0) {
    Image image = ImageOf(frame, timestamp);
    image.width = static_cast<int>(0xA5A5A5A5);
    image.height = 0;
    return image;
}

cv::Mat Reference(const cv::Mat& frame, double angle, double scale) {
    return quarry::plain::Turned(frame, angle, scale);
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
}

class RotationTransform : public ProcessorTest<operations::RotationTransform> {
protected:
    /// A turned frame, given back at its end.
    Called<operations::RotationTransform> Turned(const cv::Size& size, const Image& frame, double angle, double scale) {
        Create({0, 0, size.width, size.height});
        return Call({0, frame, angle, scale});
    }

    cv::Mat Pixels(const cv::Size& size, const Image& frame, double angle, double scale) {
        return PixelsOf(*Turned(size, frame, angle, scale)->ResultImage).clone();
    }

    template <class Exception>
    void ExpectRefusal(const cv::Size& size, const Image& frame, double angle, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << size << ", stride " << frame.stride << ", " << angle << " degrees");
        Create({0, 0, size.width, size.height});
        ProcessorTest::ExpectRefusal<Exception>({0, frame, angle, 1.0}, message);
    }
};

TEST_F(RotationTransform, EqualsThePlainStepsOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 3}, {17, 13}, {64, 48}, {333, 251}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 20; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            cv::RNG random(seed + 1);
            const double angle = random.uniform(-400.0, 400.0);
            const double scale = random.uniform(0.1, 3.0);
            auto turned = Turned(size, Unsized(frame), angle, scale);
            EXPECT_TRUE(Same(PixelsOf(*turned->ResultImage), Reference(frame, angle, scale)))
                << size << ", seed " << seed << ", " << angle << " degrees, scale " << scale;
        }
    }
}

TEST_F(RotationTransform, EqualsThePlainStepsOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double angle = 7.3 * static_cast<double>(i);
        auto turned = Turned(frames[i].size(), ImageOf(frames[i]), angle, 0.9);
        EXPECT_TRUE(Same(PixelsOf(*turned->ResultImage), Reference(frames[i], angle, 0.9))) << "frame " << i;
    }
}

TEST_F(RotationTransform, WithoutAngleOrScaleIsTheFrame) {
    for (const cv::Size& size : {cv::Size(1, 1), cv::Size(17, 13), cv::Size(64, 48)}) {
        const cv::Mat frame = RandomFrame(size.width, size.height, 1);
        EXPECT_TRUE(Same(Pixels(size, Unsized(frame), 0.0, 1.0), frame)) << size;
    }
}

TEST_F(RotationTransform, TurnsCounterClockwiseForAPositiveAngle) {
    const cv::Mat frame = RandomFrame(40, 40, 2);
    cv::Mat expected;
    cv::rotate(frame, expected, cv::ROTATE_90_COUNTERCLOCKWISE);
    EXPECT_TRUE(Same(Pixels({40, 40}, Unsized(frame), 90.0, 1.0), expected));
}

TEST_F(RotationTransform, ByAQuarterTurnTurnsAndSqueezesTheWholeFrame) {
    const cv::Mat frame = RandomFrame(640, 480, 3);
    cv::Mat upright;
    cv::rotate(frame, upright, cv::ROTATE_90_COUNTERCLOCKWISE);
    ASSERT_EQ(upright.size(), cv::Size(480, 640));
    auto turned = Turned({640, 480}, Unsized(frame), 90.0, 1.0);
    EXPECT_TRUE(Same(PixelsOf(*turned->ResultImage), Resized(upright, {640, 480})));
}

TEST_F(RotationTransform, ByAnEighthTurnHasBlackCornersOnALargerCanvas) {
    const cv::Mat frame(100, 100, CV_8UC3, cv::Scalar(10, 20, 30));
    auto turned = Turned({100, 100}, Unsized(frame), 45.0, 1.0);
    EXPECT_TRUE(Same(PixelsOf(*turned->ResultImage), Resized(OnCanvas(frame, 45.0, 1.0, {141, 141}), {100, 100})));
    // What is left of a corner is a triangle of half a side, half a side high.
    const cv::Point corners[] = {{0, 0}, {99, 0}, {0, 99}, {99, 99}, {40, 5}, {5, 60}};
    for (const cv::Point& corner : corners)
        EXPECT_EQ(PixelsOf(*turned->ResultImage).at<cv::Vec3b>(corner), cv::Vec3b()) << corner;
    const cv::Point inside[] = {{50, 50}, {50, 5}, {5, 50}, {94, 50}, {50, 94}};
    for (const cv::Point& point : inside) {
        EXPECT_EQ(PixelsOf(*turned->ResultImage).at<cv::Vec3b>(point), cv::Vec3b(10, 20, 30)) << point;
    }
}

TEST_F(RotationTransform, ScalesOnACanvasOfFullSize) {
    const cv::Mat frame(48, 64, CV_8UC3, cv::Scalar(10, 20, 30));
    auto turned = Turned({64, 48}, Unsized(frame), 0.0, 0.5);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const bool deepInside = x >= 17 && x < 47 && y >= 13 && y < 35;
            const bool farOutside = x < 15 || x >= 49 || y < 11 || y >= 37;
            if (deepInside || farOutside) {
                EXPECT_EQ(PixelsOf(*turned->ResultImage).at<cv::Vec3b>(y, x),
                          deepInside ? cv::Vec3b(10, 20, 30) : cv::Vec3b())
                    << "(" << x << ", " << y << ")";
            }
        }
    }
}

TEST_F(RotationTransform, OfNoScaleIsEqualEverywhere) {
    const cv::Mat frame = RandomFrame(20, 16, 4);
    EXPECT_TRUE(Same(Pixels({20, 16}, Unsized(frame), 30.0, 0.0), Reference(frame, 30.0, 0.0)));
}

TEST_F(RotationTransform, RoundsHalfAPixelOfTheCanvasToTheEvenSize) {
    struct Case {
        cv::Size frame;
        double angle;
        cv::Size canvas, other;
    };
    const Case cases[] = {{{22, 32}, 27.0, {34, 38}, {34, 39}},
                          {{22, 32}, 63.0, {38, 34}, {39, 34}},
                          {{10, 19}, 37.5, {20, 21}, {19, 21}},
                          {{10, 19}, 52.5, {21, 20}, {21, 19}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.frame << ", " << c.angle << " degrees");
        const cv::Size2f box = BoxOf(c.frame, c.angle);
        ASSERT_TRUE(std::fmod(box.width, 1.0F) == 0.5F || std::fmod(box.height, 1.0F) == 0.5F) << box;
        const cv::Mat frame = RandomFrame(c.frame.width, c.frame.height, 5);
        const cv::Mat expected = Resized(OnCanvas(frame, c.angle, 1.0, c.canvas), c.frame);
        ASSERT_FALSE(Same(expected, Resized(OnCanvas(frame, c.angle, 1.0, c.other), c.frame)));
        EXPECT_TRUE(Same(Pixels(c.frame, Unsized(frame), c.angle, 1.0), expected));
    }
}

TEST_F(RotationTransform, ReadsTheFrameAtTheSizeOfTheOptions) {
    const cv::Mat frame = RandomFrame(24, 16, 6);
    const cv::Mat skewed(12, 20, CV_8UC3, frame.data);  // the first 12 x 20 pixels, packed
    const Image images[] = {{frame.data, 24, 16, 72, 0}, {frame.data, 0, 0, 60, 0}, {frame.data, -1, kLargest, 64, 0}};
    for (const Image& image : images) {
        auto turned = Turned({20, 12}, image, 20.0, 1.0);
        EXPECT_EQ(turned->ResultImage->width, 20) << image.width;
        EXPECT_EQ(turned->ResultImage->height, 12) << image.width;
        EXPECT_TRUE(Same(PixelsOf(*turned->ResultImage), Reference(skewed, 20.0, 1.0))) << image.width;
    }
}

TEST_F(RotationTransform, GivesTheFramesStrideAndTimestamp) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {51, 52, 64, 200}) {
        Image image = Unsized(frame, 0x8123456789ABCDEF);
        image.stride = stride;
        auto turned = Turned({17, 13}, image, 20.0, 1.0);
        EXPECT_EQ(turned->Status, 0) << stride;
        EXPECT_EQ(turned->ResultImage->stride, stride) << stride;
        EXPECT_EQ(turned->ResultImage->timestamp, 0x8123456789ABCDEF) << stride;
    }
}

TEST_F(RotationTransform, PacksTheRowsAndLeavesTheRestOfTheBufferAsAllocated) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {52, 64, 200}) {
        Image image = Unsized(frame);
        image.stride = stride;
        auto turned = Turned({17, 13}, image, 20.0, 1.0);
        EXPECT_TRUE(Same(PixelsOf(*turned->ResultImage), Reference(frame, 20.0, 1.0))) << stride;
        const int rest = 13 * (stride - 51);
        EXPECT_EQ(CountFresh(turned->ResultImage->data + std::ptrdiff_t{13} * 51, rest), rest) << stride;
    }
}

TEST_F(RotationTransform, RefusesNullPixels) {
    ExpectRefusal<cv::Exception>({9, 7}, {nullptr, 9, 7, 27, 0}, 20.0);
    // Of the last four strides a host with pixels would be told.
    for (const int stride : {27, 0, 26, -27, std::numeric_limits<int>::min()}) {
        ExpectRefusal<cv::Exception>({9, 7}, {nullptr, 0, 0, stride, 0}, 20.0);
    }
}

TEST_F(RotationTransform, RefusesAFrameWithoutPixels) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(9, 0), cv::Size(0, 7)}) {
        ExpectRefusal<cv::Exception>(size, ImageOf(frame), 20.0);
        ExpectRefusal<cv::Exception>(size, {nullptr, 9, 7, 27, 0}, 20.0);
    }
}

TEST_F(RotationTransform, OfAnAngleThatIsNotFiniteHasItsSizeAndLeaksNothing) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    for (const double angle : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()}) {
        std::size_t before = 0;
        for (int call = 0; call < 2; ++call) {  // whatever the first keeps for good is kept once
            before = LiveBlocks();
            auto turned = Turned({9, 7}, Unsized(frame), angle, 1.0);
            EXPECT_EQ(turned->ResultImage->width, 9) << angle;
            EXPECT_EQ(turned->ResultImage->height, 7) << angle;
        }
        EXPECT_EQ(LiveBlocks(), before) << angle;
    }
}

TEST_F(RotationTransform, RefusesAStrideThatIsTooSmallForThePackedResult) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {50, 17, 1, 0, -1, -51, std::numeric_limits<int>::min()}) {
        Image image = Unsized(frame);
        image.stride = stride;
        ExpectRefusal<std::invalid_argument>(
            {17, 13}, image, 20.0,
            "RotationTransformData.Frame.stride is " + std::to_string(stride) + "; at least width x 3 = 51 is needed");
    }
    ExpectRefusal<std::invalid_argument>({kLargest, 1}, {frame.data, 0, 0, kLargest, 0}, 20.0,
                                         "RotationTransformData.Frame.stride is 2147483647; at least width x 3 = "
                                         "6442450941 is needed");
}

TEST_F(RotationTransform, RefusesASizeWhoseBufferWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({65536, 65536}, {pixel, 1, 1, 196608, 0}, 20.0,
                                         "RotationTransformData.Frame: height 65536 x stride 196608; at most "
                                         "2147483647 is allowed");
    ExpectRefusal<std::invalid_argument>({1, 4}, {pixel, 1, 1, 1 << 30, 0}, 20.0);
}

TEST_F(RotationTransform, FailsAsAnAllocationWhenTheBufferWrapsToANegativeSize) {
    uint8_t pixels[6] = {};
    ExpectRefusal<std::bad_alloc>({1, 2}, {pixels, 1, 2, 1 << 30, 0}, 0.0);
}

TEST_F(RotationTransform, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    ExpectRefusal<std::invalid_argument>({-9, -7}, Unsized(frame), 20.0,
                                         "TransformOptions: -9 x -7 pixels; neither may be negative");
    ExpectRefusal<std::invalid_argument>({-9, 7}, Unsized(frame), 20.0);
    ExpectRefusal<std::invalid_argument>({9, -7}, Unsized(frame), 20.0);
}

}  // namespace
