#include <gtest/gtest.h>

#include <cstring>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "plain/PixelwiseFire.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using quarry::plain::Fire;

const cv::Scalar kFlame(60, 200, 255);

/// A black frame with boxes in the colour of flames.
cv::Mat Flames(const cv::Size& size, const std::vector<cv::Rect>& boxes) {
    cv::Mat frame = cv::Mat::zeros(size, CV_8UC3);
    for (const cv::Rect& box : boxes) frame(box).setTo(kFlame);
    return frame;
}

/// A mask that holds these boxes, grown twice by an ellipse whose rows are written out here.
cv::Mat Grown(const cv::Size& size, const std::vector<cv::Rect>& boxes) {
    constexpr int kHalfWidths[] = {0, 3, 4, 5, 5, 5, 5, 5, 4, 3, 0};
    cv::Mat mask = cv::Mat::zeros(size, CV_8U);
    for (const cv::Rect& box : boxes) mask(box).setTo(255);
    for (int turn = 0; turn < 2; ++turn) {
        const cv::Mat before = mask.clone();
        for (int y = 0; y < mask.rows; ++y) {
            for (int x = 0; x < mask.cols; ++x) {
                if (before.at<uint8_t>(y, x) == 0) continue;
                for (int dy = -5; dy <= 5; ++dy) {
                    const int half = kHalfWidths[dy + 5];
                    mask(cv::Rect(x - half, y + dy, 2 * half + 1, 1) & cv::Rect({}, size)).setTo(255);
                }
            }
        }
    }
    return mask;
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && std::memcmp(a.data, b.data, a.total()) == 0;
}

class PixelwiseFire : public ProcessorTest<operations::FirePixels> {
protected:
    cv::Mat Mark(const cv::Mat& frame) {
        auto result = Call({0, ImageOf(frame)});
        return cv::Mat(result->FireMask->height, result->FireMask->width, CV_8U, result->FireMask->data).clone();
    }

    void ExpectAssertion(const Image& frame) {
        SCOPED_TRACE(testing::Message() << frame.width << " x " << frame.height);
        ExpectRefusal<cv::Exception>({0, frame}, "(-215:Assertion failed)");
    }
};

TEST_F(PixelwiseFire, MarksTheLargestRegionOfFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {3, 3}, {4, 3}, {17, 13}, {64, 48}, {133, 71}};
    for (const cv::Size& size : sizes) {
        for (int share = 1; share <= 9; ++share) {  // of ten pixels that are flame
            cv::Mat draw(size, CV_8U);
            cv::RNG(static_cast<uint64_t>(share)).fill(draw, cv::RNG::UNIFORM, 0, 10);
            cv::Mat frame = cv::Mat::zeros(size, CV_8UC3);
            frame.setTo(kFlame, draw < share);
            EXPECT_TRUE(Same(Mark(frame), Fire(frame))) << size << ", " << share << " of ten";
        }
    }
}

TEST_F(PixelwiseFire, MarksTheLargestRegionOfPictures) {
    int marked = 0;
    for (const char* const name : {"fruits.jpg", "orange.jpg", "messi5.jpg", "cards.png"}) {
        const cv::Mat frame = cv::imread((MediaDirectory() / name).string());
        if (frame.empty()) GTEST_SKIP() << "no pictures in " << MediaDirectory();
        const cv::Mat expected = Fire(frame);
        EXPECT_TRUE(Same(Mark(frame), expected)) << name;
        if (cv::countNonZero(expected) > 0) ++marked;
    }
    EXPECT_GT(marked, 0);
}

TEST_F(PixelwiseFire, EqualsThePlainStepsOnEveryPatternOfFifteenPixels) {
    const cv::Size size(9, 7);
    for (const cv::Point& corner : {cv::Point(2, 1), cv::Point(0, 4), cv::Point(4, 0)}) {
        for (unsigned pattern = 0; pattern < 1U << 15; pattern += corner.x == 2 ? 1 : 7) {
            cv::Mat frame = cv::Mat::zeros(size, CV_8UC3);
            for (int bit = 0; bit < 15; ++bit) {
                if ((pattern >> bit & 1U) != 0) frame(cv::Rect(corner.x + bit % 5, corner.y + bit / 5, 1, 1)) = kFlame;
            }
            ASSERT_TRUE(Same(Mark(frame), Fire(frame))) << "pattern " << pattern << " at " << corner;
        }
    }
}

TEST_F(PixelwiseFire, EqualsThePlainStepsOnScatteredRegions) {
    for (uint64_t seed = 1; seed <= 500; ++seed) {
        cv::RNG random(seed);
        cv::Mat frame = cv::Mat::zeros(random.uniform(1, 70), random.uniform(1, 70), CV_8UC3);
        for (int region = random.uniform(0, 6); region > 0; --region) {
            const cv::Point center(random.uniform(0, frame.cols), random.uniform(0, frame.rows));
            const cv::Size axes(random.uniform(0, 9), random.uniform(0, 9));
            cv::ellipse(frame, center, axes, random.uniform(0, 180), 0, 360, kFlame, random.uniform(0, 2) * 2 - 1);
        }
        ASSERT_TRUE(Same(Mark(frame), Fire(frame))) << "seed " << seed;
    }
}

TEST_F(PixelwiseFire, EqualsThePlainStepsOnScenes) {
    std::vector<cv::Mat> frames = PedestrianFrames(1);
    frames.push_back(FireScene(320, 240));
    frames.push_back(FireScene(401, 301));
    for (const cv::Mat& frame : frames) {
        const cv::Mat expected = Fire(frame);
        EXPECT_GT(cv::countNonZero(expected), 0) << frame.size();
        EXPECT_TRUE(Same(Mark(frame), expected)) << frame.size();
    }
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
    cv::findContours(quarry::plain::FlameColors(frame), contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    ASSERT_EQ(contours.size(), 2U);
    EXPECT_TRUE(Same(Mark(frame), Grown({120, 90}, {cv::boundingRect(contours[0])})));
}

TEST_F(PixelwiseFire, FillsARing) {
    cv::Mat frame = Flames({120, 120}, {{20, 20, 80, 80}});
    frame(cv::Rect(25, 25, 70, 70)).setTo(0);
    frame(cv::Rect(50, 50, 9, 9)).setTo(kFlame);
    EXPECT_TRUE(Same(Mark(frame), Grown({120, 120}, {{20, 20, 80, 80}})));
}

TEST_F(PixelwiseFire, RefusesAFrameWithoutPixels) {
    uint8_t pixel[3] = {};
    for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
        for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0)}) {
            ExpectAssertion({data, size.width, size.height, 15, 0});
        }
    }
}

TEST_F(PixelwiseFire, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    ExpectAssertion({nullptr, 4, 4, 12, 0});
}

TEST_F(PixelwiseFire, RefusesANegativeSize) {
    uint8_t pixels[75] = {};
    for (const cv::Size& size : {cv::Size(-5, 5), cv::Size(5, -5), cv::Size(-5, -5)}) {
        ExpectAssertion({pixels, size.width, size.height, 15, 0});
    }
}

TEST_F(PixelwiseFire, RefusesASizeWhoseMaskWouldWrapToASmallOne) {
    uint8_t pixel[3] = {};
    ExpectRefusal<std::invalid_argument>({0, {pixel, 65536, 65537, 196608, 0}},
                                         "FireInputData.Frame: 65536 x 65537 pixels; at most 2147483647 are allowed");
}

}  // namespace
