#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

constexpr int kMethods = 6;
constexpr int kWidest = std::numeric_limits<int32_t>::max() / 3;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
const RelRect kWhole = {0.0F, 0.0F, 1.0F, 1.0F};

/// One processor per method, called through the drivers.
class ColorComparing : public testing::Test {
protected:
    ColorComparing() {
        for (int method = 0; method < kMethods; ++method) handles.push_back(Create(method));
    }
    ~ColorComparing() override {
        for (void* const handle : handles) Dispose(handle);
    }

    static void* Create(int method, unsigned char unread = 0xA5) {
        auto options = FramedOptions<ColorComparingOptions>(unread);
        options->CompareMethod = method;
        void* handle = nullptr;
        CreateCVColorComparator(&handle, options.record());
        return handle;
    }

    static double Compare(void* handle, const Image& first, const Image& second, const RelRect& area = kWhole,
                          unsigned char unread = 0xA5) {
        auto input = FramedInput<ColorComparingInputData>(unread);
        input->FirstImage = first;
        input->SecondImage = second;
        input->Area = area;
        auto result = FramedResult<ColorComparingOutputData>(0xA5);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        return result->Similarity;
    }
    double Compare(int method, const cv::Mat& first, const cv::Mat& second, const RelRect& area = kWhole) {
        return Compare(handles[static_cast<std::size_t>(method)], ImageOf(first), ImageOf(second), area);
    }

    /// A call that must throw, and change nothing.
    template <class Exception>
    static void ExpectRefusal(void* handle, const Image& first, const Image& second, const RelRect& area = kWhole,
                              const std::vector<std::string>& words = {}) {
        SCOPED_TRACE(testing::Message() << first.width << " x " << first.height << " and " << second.width << " x "
                                        << second.height << ", " << area.X << ", " << area.Y << ", " << area.Width
                                        << " x " << area.Height);
        auto input = FramedInput<ColorComparingInputData>();
        input->FirstImage = first;
        input->SecondImage = second;
        input->Area = area;
        const std::string said = RefusalOfInput<Exception, ColorComparingOutputData>(handle, input);
        for (const std::string& word : words) EXPECT_NE(said.find(word), std::string::npos) << said;
    }

    std::vector<void*> handles;
};

/// How many pixels have which of 50 hues and 60 saturations.
cv::Mat Counts(const cv::Mat& region) {
    cv::Mat hsv;
    cv::cvtColor(region.clone(), hsv, cv::COLOR_BGR2HSV);
    cv::Mat counts = cv::Mat::zeros(50, 60, CV_32F);
    for (int y = 0; y < hsv.rows; ++y) {
        for (int x = 0; x < hsv.cols; ++x) {
            const auto& pixel = hsv.at<cv::Vec3b>(y, x);
            counts.at<float>(pixel[0] * 50 / 180, pixel[1] * 60 / 256) += 1.0F;
        }
    }
    return counts;
}

double Reference(const cv::Mat& first, const cv::Mat& second, const cv::Rect& area, int method) {
    return cv::compareHist(Counts(first(area)), Counts(second(area)), method);
}

cv::Rect WholeOf(const cv::Mat& frame) {
    return {0, 0, frame.cols, frame.rows};
}

/// Noise around one colour, so that frames differ as pictures do.
cv::Mat Tinted(int width, int height, uint64_t seed) {
    cv::Mat frame = RandomFrame(width, height, seed);
    cv::RNG random(seed + 100);
    const cv::Scalar tint(random.uniform(0, 256), random.uniform(0, 256), random.uniform(0, 256));
    return frame * 0.25 + cv::Mat(frame.size(), CV_8UC3, tint) * 0.75;
}

TEST_F(ColorComparing, ComparesTheHistogramsOfFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {17, 13}, {64, 48}, {333, 251}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 4; ++seed) {
            const cv::Mat first = Tinted(size.width, size.height, 2 * seed);
            const cv::Mat second = Tinted(size.width, size.height, 2 * seed + 1);
            for (int method = 0; method < kMethods; ++method) {
                const double expected = Reference(first, second, WholeOf(first), method);
                EXPECT_EQ(Compare(method, first, second), expected)
                    << size << ", seed " << seed << ", method " << method;
            }
        }
    }
}

TEST_F(ColorComparing, ComparesTheHistogramsOfNoise) {
    for (uint64_t seed = 0; seed < 8; ++seed) {
        const cv::Mat first = RandomFrame(320, 240, 2 * seed);
        const cv::Mat second = RandomFrame(320, 240, 2 * seed + 1);
        for (int method = 0; method < kMethods; ++method) {
            EXPECT_EQ(Compare(method, first, second), Reference(first, second, WholeOf(first), method))
                << "seed " << seed << ", method " << method;
        }
    }
}

TEST_F(ColorComparing, CountsEveryHueAndEverySaturation) {
    cv::Mat hsv(180, 256, CV_8UC3);
    for (int y = 0; y < hsv.rows; ++y) {
        for (int x = 0; x < hsv.cols; ++x)
            hsv.at<cv::Vec3b>(y, x) = cv::Vec3b(static_cast<uint8_t>(y), static_cast<uint8_t>(x), 255);
    }
    cv::Mat colours;
    cv::cvtColor(hsv, colours, cv::COLOR_HSV2BGR);
    const cv::Mat noise = RandomFrame(256, 180, 3);
    for (int method = 0; method < kMethods; ++method) {
        EXPECT_EQ(Compare(method, colours, noise), Reference(colours, noise, WholeOf(noise), method))
            << "method " << method;
    }
}

TEST_F(ColorComparing, ComparesTheHistogramsOfPictures) {
    const std::pair<const char*, const char*> pairs[] = {
        {"basketball1.png", "basketball2.png"}, {"leuvenA.jpg", "leuvenB.jpg"}, {"apple.jpg", "orange.jpg"}};
    for (const auto& [one, other] : pairs) {
        const cv::Mat first = cv::imread((MediaDirectory() / one).string());
        const cv::Mat second = cv::imread((MediaDirectory() / other).string());
        if (first.empty() || second.empty()) GTEST_SKIP() << "no pictures in " << MediaDirectory();
        const cv::Rect area(first.cols / 4, first.rows / 8, first.cols / 2, first.rows / 2);
        const RelRect relative = {static_cast<float>(area.x) / static_cast<float>(first.cols) + 1e-4F,
                                  static_cast<float>(area.y) / static_cast<float>(first.rows) + 1e-4F,
                                  static_cast<float>(area.width) / static_cast<float>(first.cols) + 1e-4F,
                                  static_cast<float>(area.height) / static_cast<float>(first.rows) + 1e-4F};
        for (int method = 0; method < kMethods; ++method) {
            EXPECT_EQ(Compare(method, first, second, relative), Reference(first, second, area, method))
                << one << ", method " << method;
        }
    }
}

TEST_F(ColorComparing, ComparesTheHistogramsOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(6);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 1; i < frames.size(); ++i) {
        for (int method = 0; method < kMethods; ++method) {
            EXPECT_EQ(Compare(method, frames[i - 1], frames[i], {0.25F, 0.25F, 0.5F, 0.5F}),
                      Reference(frames[i - 1], frames[i], {192, 144, 384, 288}, method))
                << "frame " << i << ", method " << method;
        }
    }
}

TEST_F(ColorComparing, OfAFrameWithItselfIsOneByCorrelationAndZeroByChiSquare) {
    const cv::Mat frame = RandomFrame(64, 48, 1);
    EXPECT_EQ(Compare(cv::HISTCMP_CORREL, frame, frame), 1.0);
    EXPECT_EQ(Compare(cv::HISTCMP_CHISQR, frame, frame), 0.0);
}

TEST_F(ColorComparing, IsAPixelCountByIntersection) {
    const cv::Mat frame = RandomFrame(200, 160, 1);
    EXPECT_EQ(Compare(cv::HISTCMP_INTERSECT, frame, frame, {0.25F, 0.25F, 0.5F, 0.625F}), 10000.0);
}

TEST_F(ColorComparing, TakesTheAreaFromTheFirstFrameAlone) {
    const cv::Mat first = RandomFrame(60, 40, 1);
    const cv::Mat second = RandomFrame(131, 97, 2);
    for (int method = 0; method < kMethods; ++method) {
        EXPECT_EQ(Compare(method, first, second), Reference(first, second, {0, 0, 60, 40}, method)) << method;
        EXPECT_EQ(Compare(method, first, second, {0.25F, 0.5F, 0.5F, 0.25F}),
                  Reference(first, second, {15, 20, 30, 10}, method))
            << method;
    }
}

TEST_F(ColorComparing, AcceptsASecondFrameThatEndsWhereTheAreaDoes) {
    const cv::Mat first = RandomFrame(60, 40, 1);
    const cv::Mat second = RandomFrame(30, 20, 2);
    EXPECT_EQ(Compare(0, first, second, {0.0F, 0.0F, 0.5F, 0.5F}), Reference(first, second, {0, 0, 30, 20}, 0));
}

TEST_F(ColorComparing, TruncatesTheAreaToPixels) {
    const cv::Mat first = RandomFrame(101, 101, 1);
    const cv::Mat second = RandomFrame(101, 101, 2);
    const double similarity = Compare(1, first, second, {0.5F, 0.5F, 0.5F, 0.5F});
    EXPECT_EQ(similarity, Reference(first, second, {50, 50, 50, 50}, 1));
    EXPECT_NE(similarity, Reference(first, second, {51, 51, 50, 50}, 1));
    EXPECT_EQ(Compare(2, first, first, {0.5F, 0.5F, 0.5F, 0.5F}), 2500.0);
}

TEST_F(ColorComparing, TakesTheAreaFromProductsInSinglePrecision) {
    // 0.7F x 10 is 7 as a float; before it is rounded it is just below.
    ASSERT_LT(static_cast<double>(0.7F) * 10, 7.0);
    const cv::Mat frame = RandomFrame(10, 10, 1);
    EXPECT_EQ(Compare(2, frame, frame, {0.0F, 0.0F, 0.7F, 0.7F}), 49.0);
    EXPECT_EQ(Compare(1, frame, RandomFrame(10, 10, 2), {0.7F, 0.7F, 0.3F, 0.3F}),
              Reference(frame, RandomFrame(10, 10, 2), {7, 7, 3, 3}, 1));
}

TEST_F(ColorComparing, TakesAnOriginJustOutsideForTheFirstPixel) {
    const cv::Mat frame = RandomFrame(10, 10, 1);
    EXPECT_EQ(Compare(2, frame, frame, {-0.09F, -0.05F, 0.5F, 0.5F}), 25.0);
}

TEST_F(ColorComparing, RefusesASecondFrameThatDoesNotHoldTheArea) {
    const cv::Mat first = RandomFrame(60, 40, 1);
    for (const cv::Size& size : {cv::Size(59, 40), cv::Size(60, 39), cv::Size(30, 20)}) {
        const cv::Mat second = RandomFrame(size.width, size.height, 2);
        ExpectRefusal<cv::Exception>(handles[0], ImageOf(first), ImageOf(second));
    }
}

TEST_F(ColorComparing, RefusesAnAreaOutsideTheFirstFrame) {
    const cv::Mat first = RandomFrame(60, 40, 1);
    const cv::Mat second = RandomFrame(200, 200, 2);
    const RelRect areas[] = {{-0.1F, 0.0F, 0.5F, 0.5F}, {0.0F, -0.1F, 0.5F, 0.5F}, {0.0F, 0.0F, 1.1F, 1.0F},
                             {0.0F, 0.0F, 1.0F, 1.1F},  {0.6F, 0.0F, 0.5F, 0.5F},  {0.5F, 0.5F, -0.25F, 0.25F},
                             {kNan, 0.0F, 0.5F, 0.5F},  {0.0F, 0.0F, kNan, 0.5F},  {1e30F, 0.0F, 0.5F, 0.5F}};
    for (const RelRect& area : areas) ExpectRefusal<cv::Exception>(handles[0], ImageOf(first), ImageOf(second), area);
}

TEST_F(ColorComparing, RefusesAnAreaWithoutPixels) {
    const cv::Mat frame = RandomFrame(60, 40, 1);
    ExpectRefusal<cv::Exception>(handles[0], ImageOf(frame), ImageOf(frame), {0.5F, 0.5F, 0.0F, 0.5F});
    ExpectRefusal<cv::Exception>(handles[0], ImageOf(frame), ImageOf(frame), {0.5F, 0.5F, 0.5F, 0.01F});
    ExpectRefusal<cv::Exception>(handles[0], {nullptr, 0, 0, 0, 0}, ImageOf(frame));
}

TEST_F(ColorComparing, RefusesAnUnknownMethodAtEachCall) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    for (const int method : {-1, kMethods, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        SCOPED_TRACE(method);
        void* const handle = Create(method);
        for (int call = 0; call < 2; ++call) ExpectRefusal<cv::Exception>(handle, ImageOf(frame), ImageOf(frame));
        Dispose(handle);
    }
}

TEST_F(ColorComparing, RefusesNullPixelsOfFramesThatAreNotEmpty) {
    const cv::Mat frame = RandomFrame(4, 4, 1);
    Image null = ImageOf(frame);
    null.data = nullptr;
    ExpectRefusal<cv::Exception>(handles[0], null, ImageOf(frame));
    ExpectRefusal<cv::Exception>(handles[0], ImageOf(frame), null);
    ExpectRefusal<cv::Exception>(handles[0], null, null);
}

TEST_F(ColorComparing, RefusesARowOfMoreBytesThan32BitsHold) {
    const cv::Mat frame = RandomFrame(4, 4, 1);
    for (const int width :
         {kWidest + 1, std::numeric_limits<int>::max(), -kWidest - 1, std::numeric_limits<int>::min()}) {
        Image wide = ImageOf(frame);
        wide.width = width;
        const std::vector<std::string> words = {"ColorComparingInputData", std::to_string(width),
                                                std::to_string(kWidest)};
        ExpectRefusal<std::invalid_argument>(handles[0], wide, ImageOf(frame), kWhole, words);
        ExpectRefusal<std::invalid_argument>(handles[0], ImageOf(frame), wide, kWhole, words);
    }
}

TEST_F(ColorComparing, AcceptsARowOfAllBytesThat32BitsHold) {
    const cv::Mat row = RandomFrame(10, 1, 1);
    Image wide = ImageOf(row);
    wide.width = kWidest;
    const RelRect firstTen = {0.0F, 0.0F, 1.45e-8F, 1.0F};
    EXPECT_EQ(Compare(handles[2], wide, wide, firstTen), 10.0);
}

TEST_F(ColorComparing, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(8, 8, 1);
    for (const cv::Size& size : {cv::Size(-4, 4), cv::Size(4, -4), cv::Size(-4, -4), cv::Size(-kWidest, 4)}) {
        const Image negative = {frame.data, size.width, size.height, 12, 0};
        ExpectRefusal<cv::Exception>(handles[0], negative, ImageOf(frame));
        ExpectRefusal<cv::Exception>(handles[0], ImageOf(frame), negative);
    }
}

}  // namespace
