#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <opencv2/imgproc.hpp>
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

constexpr int kLargest = std::numeric_limits<int32_t>::max();

/// One processor for frames of a size, called through the drivers.
class Rotator {
public:
    explicit Rotator(const cv::Size& size, unsigned char unread = 0xA5) {
        auto options = FramedOptions<TransformOptions>(unread);
        options->Width = size.width;
        options->Height = size.height;
        CreateCVRotationTransformProcessor(&handle, options.record());
    }
    Rotator(const Rotator&) = delete;
    Rotator& operator=(const Rotator&) = delete;
    ~Rotator() { Dispose(handle); }

    void* handle = nullptr;
};

Framed<RotationTransformData> InputOf(const Image& frame, double angle, double scale) {
    auto input = FramedInput<RotationTransformData>(0xA5);
    input->Frame = frame;
    input->Angle = angle;
    input->Scale = scale;
    return input;
}

/// A frame's pixels as an image that says nothing true of its size.
Image Unsized(const cv::Mat& frame, uint64_t timestamp = 0) {
    Image image = ImageOf(frame, timestamp);
    image.width = static_cast<int>(0xA5A5A5A5);
    image.height = 0;
    return image;
}

/// A turned frame, given back at the end.
class Turned {
public:
    Turned(const cv::Size& size, const Image& frame, double angle, double scale, unsigned char unread = 0xA5)
        : rotator(size, unread) {
        auto input = InputOf(frame, angle, scale);
        Process(rotator.handle, input.as<ProcessData>(), record.as<ProcessResult>());
    }
    Turned(const Turned&) = delete;
    Turned& operator=(const Turned&) = delete;
    ~Turned() { DisposeResult(rotator.handle, record.as<ProcessResult>()); }

    const Image* operator->() { return record->ResultImage; }

    /// Its pixels, as packed rows; they live as long as this does.
    cv::Mat Pixels() {
        return {record->ResultImage->height, record->ResultImage->width, CV_8UC3, record->ResultImage->data};
    }

    Framed<TransformResult> record = FramedResult<TransformResult>(0xA5);

private:
    Rotator rotator;
};

cv::Size2f BoxOf(const cv::Size& frame, double angle) {
    const cv::Size2f size(static_cast<float>(frame.width), static_cast<float>(frame.height));
    return cv::RotatedRect(cv::Point2f(0, 0), size, static_cast<float>(angle)).boundingRect2f().size();
}

/// The frame on a canvas of a given size, before it is resized.
cv::Mat OnCanvas(const cv::Mat& frame, double angle, double scale, const cv::Size& canvas) {
    const cv::Point2f center(static_cast<float>((frame.cols - 1) * 0.5), static_cast<float>((frame.rows - 1) * 0.5));
    const cv::Size2f box = BoxOf(frame.size(), angle);
    cv::Matx23d matrix = cv::getRotationMatrix2D(center, angle, scale);
    matrix(0, 2) += static_cast<double>(box.width) * 0.5 - frame.cols * 0.5;
    matrix(1, 2) += static_cast<double>(box.height) * 0.5 - frame.rows * 0.5;
    cv::Mat out;
    cv::warpAffine(frame, out, matrix, canvas, cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar());
    return out;
}

cv::Mat Resized(const cv::Mat& canvas, const cv::Size& size) {
    cv::Mat out;
    cv::resize(canvas, out, size, 0, 0, cv::INTER_LINEAR);
    return out;
}

/// To the nearest integer, halves to the even one.
int ToEven(float value) {
    const float below = std::floor(value);
    const float rest = value - below;
    const int lower = static_cast<int>(below);
    if (rest == 0.5F) return lower % 2 == 0 ? lower : lower + 1;
    return rest < 0.5F ? lower : lower + 1;
}

cv::Mat Reference(const cv::Mat& frame, double angle, double scale) {
    const cv::Size2f box = BoxOf(frame.size(), angle);
    const cv::Size canvas(ToEven(box.width), ToEven(box.height));
    return Resized(OnCanvas(frame, angle, scale, canvas), frame.size());
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
}

/// A call that must throw, and change nothing.
template <class Exception>
void ExpectRefusal(const cv::Size& size, const Image& frame, double angle, const std::string& message = {}) {
    SCOPED_TRACE(testing::Message() << size << ", stride " << frame.stride << ", " << angle << " degrees");
    const Rotator rotator(size);
    auto input = InputOf(frame, angle, 1.0);
    const std::string said = RefusalOfInput<Exception, TransformResult>(rotator.handle, input);
    EXPECT_TRUE(message.empty() || said == message) << said;
}

TEST(RotationTransform, EqualsThePlainStepsOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 3}, {17, 13}, {64, 48}, {333, 251}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 20; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            cv::RNG random(seed + 1);
            const double angle = random.uniform(-400.0, 400.0);
            const double scale = random.uniform(0.1, 3.0);
            Turned turned(size, Unsized(frame), angle, scale);
            EXPECT_TRUE(Same(turned.Pixels(), Reference(frame, angle, scale)))
                << size << ", seed " << seed << ", " << angle << " degrees, scale " << scale;
        }
    }
}

TEST(RotationTransform, EqualsThePlainStepsOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double angle = 7.3 * static_cast<double>(i);
        Turned turned(frames[i].size(), ImageOf(frames[i]), angle, 0.9);
        EXPECT_TRUE(Same(turned.Pixels(), Reference(frames[i], angle, 0.9))) << "frame " << i;
    }
}

TEST(RotationTransform, WithoutAngleOrScaleIsTheFrame) {
    for (const cv::Size& size : {cv::Size(1, 1), cv::Size(17, 13), cv::Size(64, 48)}) {
        const cv::Mat frame = RandomFrame(size.width, size.height, 1);
        EXPECT_TRUE(Same(Turned(size, Unsized(frame), 0.0, 1.0).Pixels(), frame)) << size;
    }
}

TEST(RotationTransform, TurnsCounterClockwiseForAPositiveAngle) {
    const cv::Mat frame = RandomFrame(40, 40, 2);
    cv::Mat expected;
    cv::rotate(frame, expected, cv::ROTATE_90_COUNTERCLOCKWISE);
    EXPECT_TRUE(Same(Turned({40, 40}, Unsized(frame), 90.0, 1.0).Pixels(), expected));
}

TEST(RotationTransform, ByAQuarterTurnTurnsAndSqueezesTheWholeFrame) {
    const cv::Mat frame = RandomFrame(640, 480, 3);
    cv::Mat upright;
    cv::rotate(frame, upright, cv::ROTATE_90_COUNTERCLOCKWISE);
    ASSERT_EQ(upright.size(), cv::Size(480, 640));
    Turned turned({640, 480}, Unsized(frame), 90.0, 1.0);
    EXPECT_TRUE(Same(turned.Pixels(), Resized(upright, {640, 480})));
}

TEST(RotationTransform, ByAnEighthTurnHasBlackCornersOnALargerCanvas) {
    const cv::Mat frame(100, 100, CV_8UC3, cv::Scalar(10, 20, 30));
    Turned turned({100, 100}, Unsized(frame), 45.0, 1.0);
    EXPECT_TRUE(Same(turned.Pixels(), Resized(OnCanvas(frame, 45.0, 1.0, {141, 141}), {100, 100})));
    // What is left of a corner is a triangle of half a side, half a side high.
    const cv::Point corners[] = {{0, 0}, {99, 0}, {0, 99}, {99, 99}, {40, 5}, {5, 60}};
    for (const cv::Point& corner : corners) EXPECT_EQ(turned.Pixels().at<cv::Vec3b>(corner), cv::Vec3b()) << corner;
    const cv::Point inside[] = {{50, 50}, {50, 5}, {5, 50}, {94, 50}, {50, 94}};
    for (const cv::Point& point : inside) {
        EXPECT_EQ(turned.Pixels().at<cv::Vec3b>(point), cv::Vec3b(10, 20, 30)) << point;
    }
}

TEST(RotationTransform, ScalesOnACanvasOfFullSize) {
    const cv::Mat frame(48, 64, CV_8UC3, cv::Scalar(10, 20, 30));
    Turned turned({64, 48}, Unsized(frame), 0.0, 0.5);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const bool deepInside = x >= 17 && x < 47 && y >= 13 && y < 35;
            const bool farOutside = x < 15 || x >= 49 || y < 11 || y >= 37;
            if (deepInside || farOutside) {
                EXPECT_EQ(turned.Pixels().at<cv::Vec3b>(y, x), deepInside ? cv::Vec3b(10, 20, 30) : cv::Vec3b())
                    << "(" << x << ", " << y << ")";
            }
        }
    }
}

TEST(RotationTransform, OfNoScaleIsEqualEverywhere) {
    const cv::Mat frame = RandomFrame(20, 16, 4);
    EXPECT_TRUE(Same(Turned({20, 16}, Unsized(frame), 30.0, 0.0).Pixels(), Reference(frame, 30.0, 0.0)));
}

TEST(RotationTransform, RoundsHalfAPixelOfTheCanvasToTheEvenSize) {
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
        EXPECT_TRUE(Same(Turned(c.frame, Unsized(frame), c.angle, 1.0).Pixels(), expected));
    }
}

TEST(RotationTransform, ReadsTheFrameAtTheSizeOfTheOptions) {
    const cv::Mat frame = RandomFrame(24, 16, 6);
    const cv::Mat skewed(12, 20, CV_8UC3, frame.data);  // the first 12 x 20 pixels, packed
    const Image images[] = {{frame.data, 24, 16, 72, 0}, {frame.data, 0, 0, 60, 0}, {frame.data, -1, kLargest, 64, 0}};
    for (const Image& image : images) {
        Turned turned({20, 12}, image, 20.0, 1.0);
        EXPECT_EQ(turned->width, 20) << image.width;
        EXPECT_EQ(turned->height, 12) << image.width;
        EXPECT_TRUE(Same(turned.Pixels(), Reference(skewed, 20.0, 1.0))) << image.width;
    }
}

TEST(RotationTransform, GivesTheFramesStrideAndTimestamp) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {51, 52, 64, 200}) {
        Image image = Unsized(frame, 0x8123456789ABCDEF);
        image.stride = stride;
        Turned turned({17, 13}, image, 20.0, 1.0);
        EXPECT_EQ(turned.record->Status, 0) << stride;
        EXPECT_EQ(turned->stride, stride) << stride;
        EXPECT_EQ(turned->timestamp, 0x8123456789ABCDEF) << stride;
    }
}

TEST(RotationTransform, PacksTheRowsAndLeavesTheRestOfTheBufferAsAllocated) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {52, 64, 200}) {
        Image image = Unsized(frame);
        image.stride = stride;
        Turned turned({17, 13}, image, 20.0, 1.0);
        EXPECT_TRUE(Same(turned.Pixels(), Reference(frame, 20.0, 1.0))) << stride;
        const int rest = 13 * (stride - 51);
        EXPECT_EQ(CountFresh(turned->data + std::ptrdiff_t{13} * 51, rest), rest) << stride;
    }
}

TEST(RotationTransform, DoesNotReadTheRestOfItsOptions) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    const unsigned char fills[] = {0x00, 0x01, 0xFF};
    for (const unsigned char fill : fills) {
        Turned turned({17, 13}, Unsized(frame), 20.0, 1.0, fill);
        EXPECT_TRUE(Same(turned.Pixels(), Reference(frame, 20.0, 1.0))) << "filled with " << int{fill};
    }
}

TEST(RotationTransform, LeavesTheFrameAsItIs) {
    const cv::Mat frame = RandomFrame(33, 21, 1);
    const cv::Mat before = frame.clone();
    const Turned turned({33, 21}, Unsized(frame), 20.0, 2.0);
    EXPECT_TRUE(Same(frame, before));
}

TEST(RotationTransform, LeavesThePaddingOfTheHostsRecordAsItIs) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    Turned turned({9, 7}, Unsized(frame), 20.0, 1.0);
    const auto bytes = turned.record.Bytes();
    for (std::size_t i = 4; i < 8; ++i) EXPECT_EQ(bytes[i], 0xA5) << "byte " << i;
}

TEST(RotationTransform, GivingAResultBackReleasesItAndForgetsIt) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    const Rotator rotator({9, 7});
    auto input = InputOf(Unsized(frame), 20.0, 1.0);
    auto result = FramedResult<TransformResult>();
    for (int call = 0; call < 2; ++call) {
        const std::size_t before = LiveBlocks();
        Process(rotator.handle, input.as<ProcessData>(), result.as<ProcessResult>());
        DisposeResult(rotator.handle, result.as<ProcessResult>());
        EXPECT_EQ(result->ResultImage, nullptr);
        if (call == 1) {
            EXPECT_EQ(LiveBlocks(), before);
        }
    }
}

TEST(RotationTransform, GivingBackAResultWithoutAnImageChangesNothing) {
    const Rotator rotator({9, 7});
    auto result = FramedResult<TransformResult>(0x5A);
    result->ResultImage = nullptr;
    const auto before = result.Bytes();
    DisposeResult(rotator.handle, result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
    DestroyTransformResult(nullptr);
}

TEST(RotationTransform, WorksAfterAFailedCall) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    const Rotator rotator({9, 7});
    auto input = InputOf({nullptr, 9, 7, 27, 0}, 20.0, 1.0);
    auto result = FramedResult<TransformResult>();
    EXPECT_THROW(Process(rotator.handle, input.as<ProcessData>(), result.as<ProcessResult>()), cv::Exception);
    input->Frame = ImageOf(frame);
    Process(rotator.handle, input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_TRUE(Same(cv::Mat(7, 9, CV_8UC3, result->ResultImage->data), Reference(frame, 20.0, 1.0)));
    DisposeResult(rotator.handle, result.as<ProcessResult>());
}

TEST(RotationTransform, RefusesNullPixels) {
    ExpectRefusal<cv::Exception>({9, 7}, {nullptr, 9, 7, 27, 0}, 20.0);
    // Of the last four strides a host with pixels would be told.
    for (const int stride : {27, 0, 26, -27, std::numeric_limits<int>::min()}) {
        ExpectRefusal<cv::Exception>({9, 7}, {nullptr, 0, 0, stride, 0}, 20.0);
    }
}

TEST(RotationTransform, RefusesAFrameWithoutPixels) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(9, 0), cv::Size(0, 7)}) {
        ExpectRefusal<cv::Exception>(size, ImageOf(frame), 20.0);
        ExpectRefusal<cv::Exception>(size, {nullptr, 9, 7, 27, 0}, 20.0);
    }
}

TEST(RotationTransform, OfAnAngleThatIsNotFiniteHasItsSizeAndLeaksNothing) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    for (const double angle : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()}) {
        std::size_t before = 0;
        for (int call = 0; call < 2; ++call) {  // whatever the first keeps for good is kept once
            before = LiveBlocks();
            Turned turned({9, 7}, Unsized(frame), angle, 1.0);
            EXPECT_EQ(turned->width, 9) << angle;
            EXPECT_EQ(turned->height, 7) << angle;
        }
        EXPECT_EQ(LiveBlocks(), before) << angle;
    }
}

TEST(RotationTransform, RefusesAStrideThatIsTooSmallForThePackedResult) {
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

TEST(RotationTransform, RefusesASizeWhoseBufferWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({65536, 65536}, {pixel, 1, 1, 196608, 0}, 20.0,
                                         "RotationTransformData.Frame: height 65536 x stride 196608; at most "
                                         "2147483647 is allowed");
    ExpectRefusal<std::invalid_argument>({1, 4}, {pixel, 1, 1, 1 << 30, 0}, 20.0);
}

TEST(RotationTransform, FailsAsAnAllocationWhenTheBufferWrapsToANegativeSize) {
    uint8_t pixels[6] = {};
    ExpectRefusal<std::bad_alloc>({1, 2}, {pixels, 1, 2, 1 << 30, 0}, 0.0);
}

TEST(RotationTransform, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    ExpectRefusal<std::invalid_argument>({-9, -7}, Unsized(frame), 20.0,
                                         "TransformOptions: -9 x -7 pixels; neither may be negative");
    ExpectRefusal<std::invalid_argument>({-9, 7}, Unsized(frame), 20.0);
    ExpectRefusal<std::invalid_argument>({9, -7}, Unsized(frame), 20.0);
}

}  // namespace
