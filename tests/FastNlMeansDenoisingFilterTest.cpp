#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Allocations.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
constexpr int kLowest = std::numeric_limits<int32_t>::min();

class FastNlMeansDenoisingFilter : public ProcessorTest<operations::FastNlMeansDenoising> {
protected:
    template <class Exception>
    void ExpectRefusal(const Image& image, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << image.width << " x " << image.height << ", stride " << image.stride);
        ProcessorTest::ExpectRefusal<Exception>({0, image}, message);
    }
};

cv::Mat Reference(const cv::Mat& frame) {
    cv::Mat denoised;
    cv::fastNlMeansDenoisingColored(frame, denoised, 10.0F, 10.0F, 7, 21);
    return denoised;
}

bool StartsWith(const uint8_t* bytes, const cv::Mat& expected) {
    return std::memcmp(bytes, expected.data, expected.total() * expected.elemSize()) == 0;
}

/// A smooth scene under noise that the filter's strength is made for.
cv::Mat NoisyScene(int width, int height, uint64_t seed) {
    cv::Mat frame = MovingSquare(width, height, 2);
    cv::Mat noise(frame.size(), CV_8UC3);
    cv::RNG random(seed + 1);
    random.fill(noise, cv::RNG::NORMAL, 20, 10);
    return frame + noise;
}

TEST_F(FastNlMeansDenoisingFilter, EqualsThePlainCallOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 3}, {5, 40}, {17, 13}, {64, 48}, {101, 67}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 3; ++seed) {
            for (const cv::Mat& frame :
                 {RandomFrame(size.width, size.height, seed), NoisyScene(size.width, size.height, seed)}) {
                auto denoised = Call({0, ImageOf(frame)});
                EXPECT_TRUE(StartsWith(denoised->Image->data, Reference(frame))) << size << ", seed " << seed;
            }
        }
    }
}

TEST_F(FastNlMeansDenoisingFilter, EqualsThePlainCallOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(10);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const cv::Mat part = frames[i](cv::Rect(40 * static_cast<int>(i), 200, 160, 120)).clone();
        auto denoised = Call({0, ImageOf(part)});
        EXPECT_TRUE(StartsWith(denoised->Image->data, Reference(part))) << "frame " << i;
    }
}

TEST_F(FastNlMeansDenoisingFilter, EqualsThePlainCallOnPictures) {
    for (const char* const name : {"messi5.jpg", "fruits.jpg", "text_defocus.jpg"}) {
        const cv::Mat picture = cv::imread((MediaDirectory() / name).string());
        if (picture.empty()) GTEST_SKIP() << "no " << name << " in " << MediaDirectory();
        cv::Mat small;
        cv::resize(picture, small, {161, 117}, 0, 0, cv::INTER_AREA);
        auto denoised = Call({0, ImageOf(small)});
        EXPECT_TRUE(StartsWith(denoised->Image->data, Reference(small))) << name;
    }
}

TEST_F(FastNlMeansDenoisingFilter, EveryConstantCounts) {
    // A frame on which another strength or window gives another picture, so that equality above says something.
    const cv::Mat frame = NoisyScene(64, 48, 5);
    auto denoised = Call({0, ImageOf(frame)});
    struct Constants {
        float strength, colorStrength;
        int templateWindow, searchWindow;
    };
    for (const Constants& c : {Constants{9.0F, 10.0F, 7, 21}, Constants{10.0F, 9.0F, 7, 21},
                               Constants{10.0F, 10.0F, 5, 21}, Constants{10.0F, 10.0F, 7, 19}}) {
        cv::Mat other;
        cv::fastNlMeansDenoisingColored(frame, other, c.strength, c.colorStrength, c.templateWindow, c.searchWindow);
        EXPECT_FALSE(StartsWith(denoised->Image->data, other))
            << c.strength << ", " << c.colorStrength << ", " << c.templateWindow << ", " << c.searchWindow;
    }
}

TEST_F(FastNlMeansDenoisingFilter, BringsANoisyFrameCloserToTheCleanOne) {
    const cv::Mat clean(48, 64, CV_8UC3, cv::Scalar(90, 120, 150));
    cv::Mat noise(clean.size(), CV_16SC3);
    cv::RNG random(4);
    random.fill(noise, cv::RNG::NORMAL, 0, 8);
    cv::Mat noisy;
    cv::add(clean, noise, noisy, cv::noArray(), CV_8U);
    auto denoised = Call({0, ImageOf(noisy)});
    const cv::Mat result(48, 64, CV_8UC3, denoised->Image->data);
    EXPECT_LT(cv::norm(result, clean), 0.4 * cv::norm(noisy, clean));
}

TEST_F(FastNlMeansDenoisingFilter, GivesBackAUniformFrameButForTheRoundingOfItsColourSpace) {
    cv::RNG random(9);
    for (int i = 0; i < 200; ++i) {
        const cv::Scalar color(random.uniform(0, 256), random.uniform(0, 256), random.uniform(0, 256));
        const cv::Mat frame(9, 11, CV_8UC3, color);
        cv::Mat there;
        cv::Mat andBack;
        cv::cvtColor(frame, there, cv::COLOR_LBGR2Lab);
        cv::cvtColor(there, andBack, cv::COLOR_Lab2LBGR);
        auto denoised = Call({0, ImageOf(frame)});
        EXPECT_TRUE(StartsWith(denoised->Image->data, andBack)) << color;
        EXPECT_LE(cv::norm(andBack, frame, cv::NORM_INF), 5) << color;
    }
}

TEST_F(FastNlMeansDenoisingFilter, GivesBackABlackFrame) {
    const cv::Mat frame = cv::Mat::zeros(9, 11, CV_8UC3);
    auto denoised = Call({0, ImageOf(frame)});
    EXPECT_TRUE(StartsWith(denoised->Image->data, frame));
}

TEST_F(FastNlMeansDenoisingFilter, GivesTheFramesGeometryAndTimestamp) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    Image image = ImageOf(frame, 0x8123456789ABCDEF);
    image.stride = 64;
    auto denoised = Call({0, image});
    EXPECT_EQ(denoised->Status, 0);
    EXPECT_EQ(denoised->Image->width, 17);
    EXPECT_EQ(denoised->Image->height, 13);
    EXPECT_EQ(denoised->Image->stride, 64);
    EXPECT_EQ(denoised->Image->timestamp, 0x8123456789ABCDEF);
}

TEST_F(FastNlMeansDenoisingFilter, PacksTheRowsAndLeavesTheRestOfTheBufferAsAllocated) {
    const cv::Mat frame = NoisyScene(17, 13, 1);
    for (const int stride : {51, 52, 64, 200}) {
        Image image = ImageOf(frame);
        image.stride = stride;
        auto denoised = Call({0, image});
        EXPECT_TRUE(StartsWith(denoised->Image->data, Reference(frame))) << "stride " << stride;
        const int rest = 13 * (stride - 51);
        EXPECT_EQ(CountFresh(denoised->Image->data + frame.total() * 3, rest), rest) << "stride " << stride;
    }
}

TEST_F(FastNlMeansDenoisingFilter, ReadsPaddedRowsAsIfPacked) {
    const cv::Mat padded = NoisyScene(24, 16, 7);
    Image image = ImageOf(padded);
    image.width = 20;  // the stride still says 24 pixels
    auto denoised = Call({0, image});
    EXPECT_TRUE(StartsWith(denoised->Image->data, Reference(cv::Mat(16, 20, CV_8UC3, padded.data))));
}

TEST_F(FastNlMeansDenoisingFilter, GivesAnUnfilledImageForASizeWithoutPixels) {
    uint8_t pixel[3] = {};
    struct Case {
        int width, height, stride, bytes;
    };
    const Case cases[] = {
        {0, 0, 0, 0},
        {0, 5, 12, 60},
        {0, 5, 0, 0},
        {5, 0, 15, 0},
        {5, 0, -1, 0},
        {-4, 5, 12, 60},          // the product is negative
        {4, -5, -12, 60},         // so it is here
        {32768, 65536, 0, 0},     // 2 ^ 31 wraps to a negative product
        {65536, 65536, 1, 65536}  // 2 ^ 32 wraps to 0
    };
    for (const Case& c : cases) {
        for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
            SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << ", stride " << c.stride);
            auto denoised = Call({0, {data, c.width, c.height, c.stride, 11}});
            EXPECT_EQ(denoised->Status, 0);
            EXPECT_EQ(denoised->Image->width, c.width);
            EXPECT_EQ(denoised->Image->height, c.height);
            EXPECT_EQ(denoised->Image->stride, c.stride);
            EXPECT_EQ(denoised->Image->timestamp, 11U);
            EXPECT_EQ(CountFresh(denoised->Image->data, c.bytes), c.bytes);
        }
    }
}

TEST_F(FastNlMeansDenoisingFilter, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    // Of the last four strides a host with pixels would be told.
    for (const int stride : {12, 0, 11, -12, kLowest}) ExpectRefusal<cv::Exception>({nullptr, 4, 4, stride, 0});
}

TEST_F(FastNlMeansDenoisingFilter, RefusesAStrideThatIsTooSmallForThePackedResult) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {50, 17, 1, 0, -1, -51, kLowest}) {
        Image image = ImageOf(frame);
        image.stride = stride;
        ExpectRefusal<std::invalid_argument>(
            image, "FilterData.Image.stride is " + std::to_string(stride) + "; at least width x 3 = 51 is needed");
    }
}

TEST_F(FastNlMeansDenoisingFilter, RefusesASizeWhoseBufferWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({pixel, 1, 4, 1 << 30, 0},
                                         "FilterData.Image: height 4 x stride 1073741824; at most 2147483647 is "
                                         "allowed");
    ExpectRefusal<std::invalid_argument>({pixel, 65537, 65537, 65536 * 4, 0});  // the number of pixels wraps too
}

TEST_F(FastNlMeansDenoisingFilter, FailsAsAnAllocationWhenTheBufferWrapsToANegativeSize) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::bad_alloc>({pixel, 1, 2, 1 << 30, 0});
    ExpectRefusal<std::bad_alloc>({pixel, 0, 5, -1, 0});
}

TEST_F(FastNlMeansDenoisingFilter, RefusesASizeThatIsNegativeBothWays) {
    uint8_t pixels[12] = {};
    ExpectRefusal<cv::Exception>({pixels, -5, -5, -1, 0});
    ExpectRefusal<cv::Exception>({pixels, -1, -1, 0, 0});
}

}  // namespace
