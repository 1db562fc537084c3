#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "Quarry.OpenCV/FlameCandidates.h"
#include "plain/FlameColor.h"

namespace {

using namespace quarry::plain;

void ExpectTheRulesHold(const cv::Mat& frame) {
    const cv::Mat candidates = quarry::FlameCandidates(frame);
    ASSERT_EQ(candidates.size(), frame.size());
    ASSERT_EQ(candidates.type(), CV_8UC1);
    int differing = 0;
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) {
            const auto& pixel = frame.at<cv::Vec3b>(y, x);
            const bool flame = PlainIsFlame(PlainLab(pixel[2], pixel[1], pixel[0]));
            if (candidates.at<uchar>(y, x) == (flame ? 255 : 0) || ++differing > 5) continue;
            ADD_FAILURE() << frame.size() << ": " << pixel << " in row " << y << ", column " << x;
        }
    }
    EXPECT_EQ(differing, 0);
}

/// A frame of all colors.
/// @param step  odd: from one pixel's color to the next, so that neighbours and places differ
cv::Mat AllColors(uint32_t step) {
    cv::Mat frame(4096, 4096, CV_8UC3);
    uint32_t color = 0;
    for (auto pixel = frame.begin<cv::Vec3b>(); pixel != frame.end<cv::Vec3b>(); ++pixel, color += step) {
        *pixel = {static_cast<uchar>(color), static_cast<uchar>(color >> 8), static_cast<uchar>(color >> 16)};
    }
    return frame;
}

/// Noise about a color at the border of the flames: each pixel may be one or not.
cv::Mat Flickering(const cv::Size& size, uint64_t seed) {
    cv::Mat frame(size, CV_8UC3);
    cv::RNG(seed).fill(frame, cv::RNG::NORMAL, cv::Scalar(165, 205, 235), cv::Scalar(40, 20, 25));
    return frame;
}

TEST(FlameCandidates, AreAllColorsThatTheRulesLetThrough) {
    ExpectTheRulesHold(AllColors(1));
}

TEST(FlameCandidates, DoNotDependOnTheirNeighbours) {
    ExpectTheRulesHold(AllColors(0x9E3779B1U));
}

TEST(FlameCandidates, DoNotDependOnHowManyPixelsFollow) {
    cv::Mat frame = AllColors(0x9E3779B1U);
    const cv::Mat expected = quarry::FlameCandidates(frame);
    constexpr int kFew = 16;
    for (int x = 0; x < frame.cols; x += kFew) {
        for (int y = 0; y < frame.rows; ++y) {
            const cv::Mat few(1, kFew, CV_8UC3, frame.ptr(y, x));
            ASSERT_EQ(std::memcmp(quarry::FlameCandidates(few).data, expected.ptr(y, x), kFew), 0) << y << ", " << x;
        }
    }
}

TEST(FlameCandidates, AreFoundInFramesOfAnySize) {
    for (int width = 1; width <= 70; ++width) {
        for (const int height : {1, 2, 3, 7}) {
            ExpectTheRulesHold(Flickering({width, height}, static_cast<uint64_t>(width)));
        }
    }
}

TEST(FlameCandidates, AreReadFromThePixelsAlone) {
    // Memory of its own that ends with the last pixel, so that a sanitizer sees a byte read behind it.
    for (int count = 1; count <= 70; ++count) {
        const cv::Mat drawn = Flickering({count, 1}, 9);
        std::vector<uchar> pixels(drawn.datastart, drawn.dataend);
        pixels.shrink_to_fit();
        ExpectTheRulesHold(cv::Mat(1, count, CV_8UC3, pixels.data()));
    }
}

TEST(FlameCandidates, OfExtremeFrames) {
    for (const cv::Scalar& color : {cv::Scalar::all(0), cv::Scalar::all(255), cv::Scalar::all(240)}) {
        ExpectTheRulesHold(cv::Mat(33, 49, CV_8UC3, color));
    }
    cv::Mat alternating(33, 49, CV_8UC3);
    for (int i = 0; i < 33 * 49; ++i) alternating.at<cv::Vec3b>(i / 49, i % 49) = cv::Vec3b::all(i % 2 == 0 ? 0 : 255);
    ExpectTheRulesHold(alternating);
}

}  // namespace
