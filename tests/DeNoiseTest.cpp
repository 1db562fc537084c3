#include <gtest/gtest.h>

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "Quarry.OpenCV/BackgroundUpdating.h"

namespace {

/// The speck filter on a plain grid of numbers.
cv::Mat Despeckled(const cv::Mat& mask) {
    std::vector<std::vector<int>> grid(static_cast<std::size_t>(mask.rows));
    for (int r = 0; r < mask.rows; ++r) {
        for (int c = 0; c < mask.cols; ++c) grid[static_cast<std::size_t>(r)].push_back(mask.at<uint8_t>(r, c));
    }
    for (std::size_t r = 1; r + 1 < grid.size(); ++r) {
        for (std::size_t c = 1; c + 1 < grid[r].size(); ++c) {
            int sum = 0;
            for (std::size_t y = r - 1; y <= r + 1; ++y) {
                for (std::size_t x = c - 1; x <= c + 1; ++x) sum += grid[y][x];
            }
            if (sum < 765 || grid[r][c] != 255) grid[r][c] = 0;
        }
    }
    cv::Mat result(mask.size(), CV_8U);
    for (int r = 0; r < mask.rows; ++r) {
        for (int c = 0; c < mask.cols; ++c) {
            result.at<uint8_t>(r, c) =
                static_cast<uint8_t>(grid[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)]);
        }
    }
    return result;
}

bool SameBytes(const cv::Mat& a, const cv::Mat& b) {
    return a.total() == b.total() && (a.empty() || cv::countNonZero(a != b) == 0);
}

void ExpectThePlainSteps(const cv::Mat& mask) {
    const cv::Mat expected = Despeckled(mask);
    cv::Mat filtered = mask.clone();
    BackgroundUpdatingSystem::DeNoise(filtered);
    EXPECT_TRUE(SameBytes(filtered, expected)) << mask.size();
}

/// Foreground of the given share, and few of the bytes that are neither foreground nor background.
cv::Mat RandomMask(const cv::Size& size, double share, cv::RNG& random) {
    cv::Mat mask(size, CV_8U);
    for (std::size_t i = 0; i < mask.total(); ++i) {
        const bool foreground = random.uniform(0.0, 1.0) < share;
        const int other = random.uniform(0, 10) == 0 ? random.uniform(1, 255) : 0;
        mask.data[i] = static_cast<uint8_t>(foreground ? 255 : other);
    }
    return mask;
}

TEST(DeNoise, EqualsThePlainStepsOnMasksOfAnySize) {
    cv::RNG random(3);
    for (int height = 0; height <= 5; ++height) {
        for (int width = 0; width <= 40; ++width) {
            for (const double share : {0.1, 0.3, 0.6, 0.9}) {
                SCOPED_TRACE(testing::Message() << "share " << share);
                ExpectThePlainSteps(RandomMask({width, height}, share, random));
            }
        }
    }
    for (const int width : {127, 128, 129, 1023, 1024, 1025, 1026, 1027, 1028, 2049, 2050, 2051, 4000}) {
        for (const double share : {0.02, 0.2, 0.4, 0.6, 0.9}) {
            SCOPED_TRACE(testing::Message() << "share " << share);
            ExpectThePlainSteps(RandomMask({width, 12}, share, random));
        }
    }
}

TEST(DeNoise, EqualsThePlainStepsOnAnyBytes) {
    cv::RNG random(4);
    for (int seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(testing::Message() << "mask " << seed);
        cv::Mat mask(17, 53, CV_8U);
        random.fill(mask, cv::RNG::UNIFORM, seed, 256);
        mask.setTo(255, mask > 200);
        ExpectThePlainSteps(mask);
    }
}

TEST(DeNoise, LeavesAFullMaskAndAnEmptyOne) {
    for (const int byte : {0, 255}) {
        cv::Mat mask(9, 1100, CV_8U, cv::Scalar(byte));
        const cv::Mat before = mask.clone();
        BackgroundUpdatingSystem::DeNoise(mask);
        EXPECT_TRUE(SameBytes(mask, before)) << byte;
    }
}

TEST(DeNoise, ClearsAllThatIsNeitherForegroundNorBorder) {
    cv::Mat mask(9, 1100, CV_8U, cv::Scalar(254));
    BackgroundUpdatingSystem::DeNoise(mask);
    EXPECT_EQ(cv::countNonZero(mask(cv::Rect(1, 1, 1098, 7))), 0);
    EXPECT_EQ(cv::countNonZero(mask), 2 * 1100 + 2 * 7);
}

TEST(DeNoise, KeepsALineAsLongAsItsFirstPixelStays) {
    // Each pixel has just itself, its right neighbour and, if that stays, its left one.
    for (const int width : {4, 9, 11, 1026, 1027, 3001}) {
        cv::Mat line = cv::Mat::zeros(3, width, CV_8U);
        line.row(1).setTo(255);
        const cv::Mat before = line.clone();
        BackgroundUpdatingSystem::DeNoise(line);
        EXPECT_TRUE(SameBytes(line, before)) << width;

        line.at<uint8_t>(1, 0) = 254;
        BackgroundUpdatingSystem::DeNoise(line);
        EXPECT_EQ(cv::countNonZero(line), 2) << width << ": all but the border goes, one after another";
    }
}

TEST(DeNoise, FiltersAPartOfAMaskAsAMaskOfItsOwn) {
    cv::RNG random(5);
    const cv::Mat whole = RandomMask({90, 30}, 0.4, random);
    const cv::Rect part(7, 3, 61, 19);
    cv::Mat expected = whole.clone();
    Despeckled(whole(part)).copyTo(expected(part));
    cv::Mat filtered = whole.clone();
    cv::Mat region = filtered(part);
    BackgroundUpdatingSystem::DeNoise(region);
    EXPECT_TRUE(SameBytes(filtered, expected));
}

TEST(DeNoise, SeesWhatItHasAlreadyCleared) {
    // A diagonal of three foreground pixels: the first is cleared (border aside it has one neighbour), so the second is
    // left with one neighbour too, and so on. With the old values around it, the second would stay.
    cv::Mat mask = cv::Mat::zeros(5, 5, CV_8U);
    for (int i = 1; i <= 3; ++i) mask.at<uint8_t>(i, i) = 255;
    BackgroundUpdatingSystem::DeNoise(mask);
    EXPECT_EQ(cv::countNonZero(mask), 0);
}

TEST(DeNoise, KeepsThreeInOneNeighbourhoodAndTheBorder) {
    const uint8_t pixels[] = {255, 0,   0,   127, 255,  //
                              0,   255, 255, 0,   0,    //
                              0,   255, 0,   0,   0,    //
                              0,   0,   0,   127, 0,    //
                              7,   0,   0,   0,   255};
    const uint8_t expected[] = {255, 0,   0,   127, 255,  //
                                0,   255, 255, 0,   0,    //
                                0,   255, 0,   0,   0,    //
                                0,   0,   0,   0,   0,    //
                                7,   0,   0,   0,   255};
    cv::Mat mask = cv::Mat(5, 5, CV_8U, const_cast<uint8_t*>(pixels)).clone();
    BackgroundUpdatingSystem::DeNoise(mask);
    EXPECT_TRUE(SameBytes(mask, cv::Mat(5, 5, CV_8U, const_cast<uint8_t*>(expected))));
}

}  // namespace
