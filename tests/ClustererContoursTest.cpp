#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "plain/ClustererContours.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/HugeFrame.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using quarry::plain::Blob;
using quarry::plain::Clusters;
using Places = std::vector<float>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
const float kJustAboveHalf = std::nextafter(0.5F, 1.0F);
const cv::Scalar kWhite = cv::Scalar::all(255);

class ContourClusters : public ProcessorTest<operations::ContourClusters> {
protected:
    ContourClusters() : ProcessorTest({0, 1.0F, 0.0F}) {}

    void Create(float precision, float areaRate) { ProcessorTest::Create({0, precision, areaRate}); }

    std::vector<Blob> Find(const cv::Mat& frame) {
        auto result = Call({0, ImageOf(frame)});
        return quarry::plain::ClustersOf(*result.operator->());
    }

    void ExpectRefusal(const Image& image, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << image.width << " x " << image.height);
        ProcessorTest::ExpectRefusal<cv::Exception>({0, image}, message);
    }
};

std::vector<quarry::plain::PixelContour> OutlinesOf(const cv::Mat& frame, float precision) {
    return quarry::plain::BlobsOf(frame, precision, 0.0F);
}

TEST_F(ContourClusters, AreTheOutlinesOfRandomScenes) {
    const cv::Size sizes[] = {{1, 1}, {7, 5}, {33, 21}, {64, 48}, {101, 77}};
    for (const float precision : {0.0F, 0.5F, kJustAboveHalf, 1.0F, -3.0F, kNan, kInfinity}) {
        for (const float areaRate : {0.0F, 0.004F, 0.03F, -1.0F}) {
            Create(precision, areaRate);
            for (uint64_t seed = 0; seed < 60; ++seed) {
                const cv::Mat frame = RandomScene(sizes[seed % std::size(sizes)], seed);
                EXPECT_EQ(Find(frame), Clusters(frame, precision, areaRate))
                    << precision << ", " << areaRate << ", seed " << seed << ", " << frame.size();
            }
        }
    }
}

TEST_F(ContourClusters, AreTheOutlinesOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(6);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (const float precision : {0.2F, 0.8F}) {
        Create(precision, 0.0002F);
        for (std::size_t i = 0; i < frames.size(); ++i) {
            cv::Mat frame = frames[i].clone();
            cv::Mat grey;
            cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
            frame.setTo(cv::Scalar::all(0), grey > 110);
            EXPECT_EQ(Find(frame), Clusters(frame, precision, 0.0002F)) << "frame " << i << ", " << precision;
        }
    }
}

TEST_F(ContourClusters, TraceEveryPixelAboveAPrecisionOfAHalf) {
    cv::Mat frame = BlackFrame(64, 48);
    cv::circle(frame, {30, 20}, 15, kWhite, cv::FILLED);
    const std::vector<Blob> coarse = {Clusters(frame, 0.0F, 0.0F)[0]};
    const std::vector<Blob> exact = {Clusters(frame, 1.0F, 0.0F)[0]};
    ASSERT_LT(coarse[0].outline.places.size(), exact[0].outline.places.size());
    for (const float precision : {0.5F, 0.0F, -kInfinity, kNan}) {
        Create(precision, 0.0F);
        EXPECT_EQ(Find(frame), coarse) << precision;
    }
    for (const float precision : {kJustAboveHalf, 1.0F, kInfinity}) {
        Create(precision, 0.0F);
        EXPECT_EQ(Find(frame), exact) << precision;
    }
}

TEST_F(ContourClusters, OfABlackFrameAreNone) {
    auto result = Call({0, ImageOf(BlackFrame(64, 48))});
    EXPECT_EQ(result->Count, 0);
    EXPECT_NE(result->Clusters, nullptr);
}

TEST_F(ContourClusters, KeepASinglePixelWhoseCentreIsFarOutside) {
    for (const float precision : {0.0F, 1.0F}) {
        Create(precision, 0.0F);
        const std::vector<Blob> blobs = Find(FrameWith({64, 48}, {20, 10, 1, 1}));
        const float lowest = -2147483648.0F;
        const std::vector<Blob> pixel = {{{{20 / 64.0F, 10 / 48.0F}, 0.0F, 0.0F}, lowest / 64.0F, lowest / 48.0F}};
        EXPECT_EQ(blobs, pixel) << precision;
    }
}

TEST_F(ContourClusters, KeepALineWhoseCentreIsFarOutside) {
    const std::vector<Blob> blobs = Find(FrameWith({64, 48}, {20, 10, 3, 1}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].outline.area, 0.0F);
    EXPECT_EQ(blobs[0].outline.perimeter, 4 / 64.0F);
    EXPECT_EQ(blobs[0].centerX, -2147483648.0F / 64.0F);
    EXPECT_EQ(blobs[0].centerY, -2147483648.0F / 48.0F);
}

TEST_F(ContourClusters, AreTwoForTwoBlobsHoweverClose) {
    cv::Mat frame = FrameWith({64, 48}, {10, 10, 9, 9});
    frame(cv::Rect(20, 10, 9, 9)).setTo(kWhite);
    const std::vector<Blob> blobs = Find(frame);
    ASSERT_EQ(blobs.size(), 2U);
    EXPECT_EQ(blobs[0].centerX + blobs[1].centerX, (14 + 24) / 64.0F);
    frame.at<cv::Vec3b>(14, 19) = cv::Vec3b::all(255);
    EXPECT_EQ(Find(frame).size(), 1U);
}

TEST_F(ContourClusters, ComeInTheOrderInWhichTheyAreFound) {
    cv::Mat frame = BlackFrame(64, 48);
    for (int i = 0; i < 9; ++i) frame(cv::Rect(5 + 20 * (i % 3), 4 + 15 * (i / 3), 4 + i, 5)).setTo(kWhite);
    const auto outlines = OutlinesOf(frame, 1.0F);
    const std::vector<Blob> blobs = Find(frame);
    ASSERT_EQ(blobs.size(), 9U);
    for (std::size_t i = 0; i < blobs.size(); ++i) {
        EXPECT_EQ(blobs[i].outline.places[0], static_cast<float>(outlines[i][0].x) / 64.0F) << "blob " << i;
        EXPECT_EQ(blobs[i].outline.places[1], static_cast<float>(outlines[i][0].y) / 48.0F) << "blob " << i;
    }
}

TEST_F(ContourClusters, CountTheHolesOfABlob) {
    cv::Mat frame = FrameWith({64, 48}, {10, 10, 21, 21});
    frame(cv::Rect(15, 15, 11, 11)).setTo(0);
    frame(cv::Rect(19, 19, 3, 3)).setTo(kWhite);  // inside a hole: no cluster of its own
    const std::vector<Blob> blobs = Find(frame);
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].outline.area, 400 / 3072.0F);
}

TEST_F(ContourClusters, HaveTheirCentreInWholePixels) {
    // The centre of mass is (13.5, 21.5).
    const std::vector<Blob> blobs = Find(FrameWith({64, 48}, {10, 18, 8, 8}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].centerX, 13 / 64.0F);
    EXPECT_EQ(blobs[0].centerY, 21 / 48.0F);
}

TEST_F(ContourClusters, AreMeasuredByTheFramesAreaAndByItsWidthAlone) {
    const std::vector<Blob> blobs = Find(FrameWith({640, 480}, {100, 50, 101, 201}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].outline.area, 100 * 200 / 307200.0F);
    EXPECT_EQ(blobs[0].outline.perimeter, 600 / 640.0F);
}

TEST_F(ContourClusters, DivideTheirAreaInDoublePrecision) {
    // The frame has more pixels than a float can count, which shows in the last bit.
    const auto divided = static_cast<float>(100.0 / (4099.0 * 4099.0));
    ASSERT_NE(divided, 100.0F / (4099.0F * 4099.0F));
    const std::vector<Blob> blobs = Find(FrameWith({4099, 4099}, {7, 5, 11, 11}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].outline.area, divided);
}

TEST_F(ContourClusters, DivideTheirPerimeterInDoublePrecision) {
    int telling = 0;
    for (int radius = 1; radius < 200; ++radius) {
        cv::Mat frame = BlackFrame(437, 411);
        cv::circle(frame, {210, 205}, radius, kWhite, cv::FILLED);
        const double length = cv::arcLength(OutlinesOf(frame, 1.0F)[0], true);
        const auto divided = static_cast<float>(length / 437.0);
        telling += divided != static_cast<float>(length) / 437.0F ? 1 : 0;
        EXPECT_EQ(Find(frame).at(0).outline.perimeter, divided) << "radius " << radius;
    }
    EXPECT_GT(telling, 0) << "no perimeter tells double from single precision";
}

TEST_F(ContourClusters, KeepABlobOfExactlyTheSmallestArea) {
    // Between the centres of its pixels the square has an area of 100.
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 11, 11});
    ASSERT_EQ(10000.0F * 0.01F, 100.0F);
    Create(1.0F, 0.01F);
    EXPECT_EQ(Find(frame).size(), 1U);
    Create(1.0F, 0.0102F);
    EXPECT_EQ(Find(frame).size(), 0U);
}

TEST_F(ContourClusters, TruncateTheSmallestAreaToWholePixels) {
    ASSERT_GT(10000.0F * 0.01009F, 100.5F);
    Create(1.0F, 0.01009F);
    EXPECT_EQ(Find(FrameWith({100, 100}, {20, 20, 11, 11})).size(), 1U);
}

TEST_F(ContourClusters, AreMeasuredByFramesOfMorePixelsThan31BitsCount) {
    const HugeFrame huge;
    if (!huge.IsThere()) GTEST_SKIP() << "no addresses for " << HugeFrame::kPixels << " pixels";
    cv::Mat frame = huge.pixels();
    frame(cv::Rect(100, 100, 11, 11)).setTo(kWhite);
    frame(cv::Rect(200, 100, 2, 2)).setTo(kWhite);
    Create(1.0F, 2e-8F);  // 42 pixels
    auto clusters = Call({0, huge.record()});
    ASSERT_EQ(clusters->Count, 1);
    EXPECT_EQ(clusters->Clusters[0].Contour->Area, static_cast<float>(100 / HugeFrame::kPixels));
}

TEST_F(ContourClusters, KeepEveryBlobWhenTheSmallestAreaIsBelowZeroOrNoInteger) {
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 1, 1});
    for (const float rate : {-1.0F, kNan, kInfinity, -kInfinity, 1e30F}) {
        Create(1.0F, rate);
        EXPECT_EQ(Find(frame).size(), 1U) << rate;
    }
}

TEST_F(ContourClusters, AreReadWithRedFirst) {
    // Red of 3 is grey 1, blue of 3 is grey 0.
    EXPECT_EQ(Find(FrameWith({20, 20}, {5, 5, 9, 9}, {3, 0, 0})).size(), 1U);
    EXPECT_EQ(Find(FrameWith({20, 20}, {5, 5, 9, 9}, {0, 0, 3})).size(), 0U);
}

TEST_F(ContourClusters, RefuseNullPixelsOfAFrameThatIsNotEmpty) {
    Find(BlackFrame(4, 4));
    ExpectRefusal({nullptr, 8, 6, 24, 0}, "total() == 0 || data != NULL");
}

TEST_F(ContourClusters, RefuseAFrameWithoutPixels) {
    uint8_t pixel[3] = {};
    Find(BlackFrame(4, 4));
    for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
        ExpectRefusal({data, 0, 0, 0, 0});
        ExpectRefusal({data, 5, 0, 15, 0});
        ExpectRefusal({data, 0, 5, 0, 0});
    }
}

}  // namespace
