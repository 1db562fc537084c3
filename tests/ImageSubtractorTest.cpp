#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Allocations.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
constexpr int kLargest = std::numeric_limits<int32_t>::max();
constexpr int kLowest = std::numeric_limits<int32_t>::min();

class ImageSubtractor : public ProcessorTest<operations::ImageSubtractor> {
protected:
    /// The difference, given back at its end.
    Called<operations::ImageSubtractor> Difference(const Image& first, const Image& second) {
        return Call({0, first, second});
    }

    template <class Exception>
    void ExpectRefusal(const Image& first, const Image& second, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << first.width << " x " << first.height << ", stride " << first.stride);
        ProcessorTest::ExpectRefusal<Exception>({0, first, second}, message);
    }
};

/// |a - b| of every byte.
std::vector<uint8_t> Reference(const cv::Mat& a, const cv::Mat& b) {
    std::vector<uint8_t> bytes(a.total() * 3);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(std::abs(a.data[i] - b.data[i]));
    return bytes;
}

bool StartsWith(const uint8_t* bytes, const std::vector<uint8_t>& expected) {
    return expected.empty() || std::memcmp(bytes, expected.data(), expected.size()) == 0;
}

TEST_F(ImageSubtractor, IsTheDifferenceOfEveryByteForFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 3}, {17, 13}, {64, 48}, {333, 251}, {640, 480}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 4; ++seed) {
            const cv::Mat first = RandomFrame(size.width, size.height, 2 * seed);
            const cv::Mat second = RandomFrame(size.width, size.height, 2 * seed + 1);
            auto difference = Difference(ImageOf(first), ImageOf(second));
            EXPECT_TRUE(StartsWith(difference->Image->data, Reference(first, second))) << size << ", seed " << seed;
        }
    }
}

TEST_F(ImageSubtractor, IsTheDifferenceOfEveryByteForRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(30);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 1; i < frames.size(); ++i) {
        auto difference = Difference(ImageOf(frames[i - 1]), ImageOf(frames[i]));
        EXPECT_TRUE(StartsWith(difference->Image->data, Reference(frames[i - 1], frames[i]))) << "frame " << i;
    }
}

TEST_F(ImageSubtractor, IsTheDifferenceOfEveryPairOfBytes) {
    cv::Mat first(256, 256, CV_8UC3);
    cv::Mat second(256, 256, CV_8UC3);
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            first.at<cv::Vec3b>(a, b) = cv::Vec3b::all(static_cast<uint8_t>(a));
            second.at<cv::Vec3b>(a, b) = cv::Vec3b::all(static_cast<uint8_t>(b));
        }
    }
    auto difference = Difference(ImageOf(first), ImageOf(second));
    EXPECT_TRUE(StartsWith(difference->Image->data, Reference(first, second)));
}

TEST_F(ImageSubtractor, OfIdenticalFramesIsZero) {
    const cv::Mat frame = RandomFrame(33, 21, 1);
    const cv::Mat copy = frame.clone();
    for (const cv::Mat& second : {copy, frame}) {
        auto difference = Difference(ImageOf(frame), ImageOf(second));
        EXPECT_TRUE(StartsWith(difference->Image->data, std::vector<uint8_t>(frame.total() * 3, 0)));
    }
}

TEST_F(ImageSubtractor, GivesTheFirstFramesGeometryAndTimestamp) {
    const cv::Mat first = RandomFrame(17, 13, 1);
    const cv::Mat second = RandomFrame(17, 13, 2);
    Image image = ImageOf(first, 0x8123456789ABCDEF);
    image.stride = 64;
    auto difference = Difference(image, ImageOf(second, 7));
    EXPECT_EQ(difference->Status, 0);
    EXPECT_EQ(difference->Image->width, 17);
    EXPECT_EQ(difference->Image->height, 13);
    EXPECT_EQ(difference->Image->stride, 64);
    EXPECT_EQ(difference->Image->timestamp, 0x8123456789ABCDEF);
}

TEST_F(ImageSubtractor, IgnoresTheSizeTheStrideAndTheTimestampOfTheSecondFrame) {
    const cv::Mat first = RandomFrame(17, 13, 1);
    const cv::Mat second = RandomFrame(17, 13, 2);
    const Image seconds[] = {{second.data, 0, 0, 0, 9},
                             {second.data, -4, -4, -4, ~uint64_t{0}},
                             {second.data, kLargest, kLargest, kLargest, 1},
                             {second.data, 13, 17, 39, 2}};
    for (const Image& image : seconds) {
        auto difference = Difference(ImageOf(first, 3), image);
        EXPECT_EQ(difference->Image->width, 17) << image.width;
        EXPECT_EQ(difference->Image->stride, 51) << image.width;
        EXPECT_EQ(difference->Image->timestamp, 3U) << image.width;
        EXPECT_TRUE(StartsWith(difference->Image->data, Reference(first, second))) << image.width;
    }
}

TEST_F(ImageSubtractor, PacksTheRowsWhateverTheStride) {
    const cv::Mat first = RandomFrame(17, 13, 1);
    const cv::Mat second = RandomFrame(17, 13, 2);
    for (const int stride : {51, 52, 64, 200}) {
        Image image = ImageOf(first);
        image.stride = stride;
        auto difference = Difference(image, ImageOf(second));
        EXPECT_TRUE(StartsWith(difference->Image->data, Reference(first, second))) << "stride " << stride;
    }
}

TEST_F(ImageSubtractor, LeavesTheRestOfTheBufferAsAllocated) {
    const cv::Mat first = RandomFrame(17, 13, 1);
    const cv::Mat second = RandomFrame(17, 13, 2);
    for (const int stride : {52, 64, 200}) {
        Image image = ImageOf(first);
        image.stride = stride;
        auto difference = Difference(image, ImageOf(second));
        const int rest = 13 * (stride - 51);
        EXPECT_EQ(CountFresh(difference->Image->data + first.total() * 3, rest), rest) << "stride " << stride;
    }
}

TEST_F(ImageSubtractor, ReadsPaddedRowsAsIfPacked) {
    const cv::Mat first = RandomFrame(24, 16, 7);
    const cv::Mat second = RandomFrame(24, 16, 8);
    Image image = ImageOf(first);
    image.width = 20;  // the stride still says 24 pixels
    auto difference = Difference(image, ImageOf(second));
    const cv::Mat skewedFirst(16, 20, CV_8UC3, first.data);
    const cv::Mat skewedSecond(16, 20, CV_8UC3, second.data);
    EXPECT_TRUE(StartsWith(difference->Image->data, Reference(skewedFirst, skewedSecond)));
}

TEST_F(ImageSubtractor, GivesEachResultABufferOfItsOwn) {
    const cv::Mat first = RandomFrame(9, 7, 1);
    const cv::Mat second = RandomFrame(9, 7, 2);
    const cv::Mat third = RandomFrame(9, 7, 3);
    auto one = Difference(ImageOf(first), ImageOf(second));
    auto other = Difference(ImageOf(first), ImageOf(third));
    EXPECT_TRUE(StartsWith(one->Image->data, Reference(first, second)));
    EXPECT_TRUE(StartsWith(other->Image->data, Reference(first, third)));
}

TEST_F(ImageSubtractor, GivesAnImageWithoutPixelsForAnEmptyFrame) {
    uint8_t pixel[3] = {};
    for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
        for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0)}) {
            auto difference = Difference({data, size.width, size.height, 24, 11}, {data, 1, 1, 3, 0});
            EXPECT_EQ(difference->Image->width, size.width) << size;
            EXPECT_EQ(difference->Image->height, size.height) << size;
            EXPECT_EQ(difference->Image->stride, 24) << size;
            EXPECT_EQ(difference->Image->timestamp, 11U) << size;
            EXPECT_EQ(CountFresh(difference->Image->data, size.height * 24), size.height * 24) << size;
        }
    }
}

TEST_F(ImageSubtractor, RefusesNullPixelsOfFramesThatAreNotEmpty) {
    const cv::Mat frame = RandomFrame(4, 4, 1);
    Image null = ImageOf(frame);
    null.data = nullptr;
    ExpectRefusal<cv::Exception>(null, ImageOf(frame));
    ExpectRefusal<cv::Exception>(ImageOf(frame), null);
    ExpectRefusal<cv::Exception>(null, null);
    for (const int stride : {0, 11, -12, kLowest}) {  // of which a host with pixels would be told
        null.stride = stride;
        ExpectRefusal<cv::Exception>(null, null);
    }
}

TEST_F(ImageSubtractor, RefusesAStrideThatIsTooSmallForThePackedResult) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const int stride : {50, 17, 1, 0, -1, -51, kLowest}) {
        Image image = ImageOf(frame);
        image.stride = stride;
        ExpectRefusal<std::invalid_argument>(image, ImageOf(frame),
                                             "BinaryImageOperationData.FirstImage.stride is " + std::to_string(stride) +
                                                 "; at least width x 3 = 51 is needed");
    }
    // More pixels per row than 32 bits can hold bytes.
    Image wide = ImageOf(frame);
    wide.width = kLargest;
    wide.stride = kLargest;
    ExpectRefusal<std::invalid_argument>(wide, ImageOf(frame),
                                         "BinaryImageOperationData.FirstImage.stride is 2147483647; at least width x 3 "
                                         "= 6442450941 is needed");
}

TEST_F(ImageSubtractor, RefusesASizeWhoseBufferWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({pixel, 65536, 65536, 196608, 0}, {pixel, 0, 0, 0, 0},
                                         "BinaryImageOperationData.FirstImage: height 65536 x stride 196608; at most "
                                         "2147483647 is allowed");
    ExpectRefusal<std::invalid_argument>({pixel, 1, 65537, 65536, 0}, {pixel, 0, 0, 0, 0});
    ExpectRefusal<std::invalid_argument>({pixel, 1, 4, 1 << 30, 0}, {pixel, 0, 0, 0, 0});
}

TEST_F(ImageSubtractor, TakesABufferThatWrapsAsLongAsItHasRoom) {
    constexpr int kHeight = 65536;
    const cv::Mat first = RandomFrame(1, kHeight, 1);
    const cv::Mat second = RandomFrame(1, kHeight, 2);
    Image image = ImageOf(first);
    image.stride = kHeight + 3;  // 3 bytes for each row
    EXPECT_TRUE(StartsWith(Difference(image, ImageOf(second))->Image->data, Reference(first, second)));
    image.stride = kHeight + 2;
    ExpectRefusal<std::invalid_argument>(image, ImageOf(second),
                                         "BinaryImageOperationData.FirstImage: height 65536 x stride 65538; at most "
                                         "2147483647 is allowed");
}

TEST_F(ImageSubtractor, FailsAsAnAllocationWhenTheBufferWrapsToANegativeSize) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::bad_alloc>({pixel, 1, 2, 1 << 30, 0}, {pixel, 0, 0, 0, 0});
    ExpectRefusal<std::bad_alloc>({pixel, 1, 3, 1431655765, 0}, {pixel, 0, 0, 0, 0});  // wraps to -1
    ExpectRefusal<std::bad_alloc>({pixel, 0, 5, -1, 0}, {pixel, 0, 0, 0, 0});
}

TEST_F(ImageSubtractor, RefusesANegativeSize) {
    uint8_t pixels[12] = {};
    ExpectRefusal<std::invalid_argument>(
        {pixels, -5, -5, -1, 0}, {pixels, 0, 0, 0, 0},
        "BinaryImageOperationData.FirstImage: -5 x -5 pixels; neither may be negative");
    ExpectRefusal<std::invalid_argument>({pixels, -5, 5, 15, 0}, {pixels, 0, 0, 0, 0});
    ExpectRefusal<std::invalid_argument>({pixels, 5, -5, -15, 0}, {pixels, 0, 0, 0, 0});
    ExpectRefusal<std::invalid_argument>({pixels, kLowest, kLowest, 0, 0}, {pixels, 0, 0, 0, 0});
}

}  // namespace
