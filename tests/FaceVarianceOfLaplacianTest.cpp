#include <gtest/gtest.h>

#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "plain/FaceVarianceOfLaplacian.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using quarry::plain::DeviationOfLaplacian;
using quarry::plain::Sharpness;

constexpr int kLowest = std::numeric_limits<int16_t>::min();
constexpr int kHighest = std::numeric_limits<int16_t>::max();

struct Ellipse {
    int x;
    int y;
    int halfWidth;
    int halfHeight;
};

std::ostream& operator<<(std::ostream& out, const Ellipse& e) {
    return out << "ellipse at (" << e.x << ", " << e.y << "), half-axes " << e.halfWidth << " and " << e.halfHeight;
}

/// A circle that reaches beyond every corner.
Ellipse Covering(const cv::Size& size) {
    const int radius = size.width + size.height + 2;
    return {size.width / 2, size.height / 2, radius, radius};
}

class FaceVarianceOfLaplacian : public ProcessorTest<operations::FaceVarianceOfLaplacian> {
protected:
    static Input InputOf(const Image& image, const Ellipse& face) {
        return {0,
                image,
                static_cast<int16_t>(face.x),
                static_cast<int16_t>(face.y),
                static_cast<int16_t>(face.halfWidth),
                static_cast<int16_t>(face.halfHeight)};
    }

    float Measure(const Image& image, const Ellipse& face) { return Call(InputOf(image, face))->Variance; }
    float Measure(const cv::Mat& frame, const Ellipse& face) { return Measure(ImageOf(frame), face); }
    void ExpectRefusal(const Image& image, const Ellipse& face) {
        SCOPED_TRACE(testing::Message() << face);
        ProcessorTest::ExpectRefusal<cv::Exception>(InputOf(image, face));
    }
};

float Reference(const cv::Mat& frame, const Ellipse& face) {
    return quarry::plain::FaceSharpness(frame, {face.x, face.y}, {face.halfWidth, face.halfHeight});
}

/// Somewhere in or near the frame.
Ellipse RandomEllipse(const cv::Size& size, cv::RNG& random) {
    return {random.uniform(-size.width, 2 * size.width), random.uniform(-size.height, 2 * size.height),
            random.uniform(0, size.width + 1), random.uniform(0, size.height + 1)};
}

TEST_F(FaceVarianceOfLaplacian, EqualsThePlainStepsOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 3}, {17, 13}, {13, 17}, {64, 48}, {333, 251}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 40; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            cv::RNG random(seed + 1);
            const Ellipse face = RandomEllipse(size, random);
            EXPECT_EQ(Measure(frame, face), Reference(frame, face)) << size << ", seed " << seed << ", " << face;
        }
    }
}

TEST_F(FaceVarianceOfLaplacian, EqualsThePlainStepsForEllipsesOfAnyShape) {
    // White, so that each pixel of the outline tells.
    const cv::Mat white(101, 113, CV_8UC3, cv::Scalar::all(255));
    for (int halfWidth = 0; halfWidth < 60; ++halfWidth) {
        for (int halfHeight = 0; halfHeight < 54; ++halfHeight) {
            const Ellipse face{56, 50, halfWidth, halfHeight};
            EXPECT_EQ(Measure(white, face), Reference(white, face)) << face;
        }
    }
}

TEST_F(FaceVarianceOfLaplacian, EqualsThePlainStepsForEllipsesAcrossTheEdges) {
    const cv::Mat frame = RandomFrame(23, 19, 6);
    for (int x = -12; x < 36; ++x) {
        for (int y = -12; y < 32; ++y) {
            const Ellipse face{x, y, 7 + x % 3, 9 + y % 4};
            EXPECT_EQ(Measure(frame, face), Reference(frame, face)) << face;
        }
    }
}

TEST_F(FaceVarianceOfLaplacian, EqualsThePlainStepsForLargeEllipses) {
    const cv::Mat frame = RandomFrame(700, 500, 8);
    cv::RNG random(9);
    for (int i = 0; i < 60; ++i) {
        const int reach = 1 << random.uniform(6, 15);
        const Ellipse face{random.uniform(-reach, reach), random.uniform(-reach, reach), random.uniform(0, reach),
                           random.uniform(0, reach)};
        EXPECT_EQ(Measure(frame, face), Reference(frame, face)) << face;
    }
}

TEST_F(FaceVarianceOfLaplacian, EqualsThePlainStepsOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(40);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    cv::RNG random(7);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const Ellipse face = i % 2 == 0 ? RandomEllipse(frames[i].size(), random) : Ellipse{380, 290, 90, 120};
        EXPECT_EQ(Measure(frames[i], face), Reference(frames[i], face)) << "frame " << i << ", " << face;
    }
}

TEST_F(FaceVarianceOfLaplacian, OfAnEllipseOverTheWholeFrameIsTheSharpnessOfTheFrame) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {17, 13}, {160, 120}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 5; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            EXPECT_EQ(Measure(frame, Covering(size)), Sharpness(frame)) << size << ", seed " << seed;
        }
    }
}

TEST_F(FaceVarianceOfLaplacian, OfTheLargestEllipseIsTheSharpnessOfTheFrame) {
    const cv::Mat frame = RandomFrame(64, 48, 4);
    EXPECT_EQ(Measure(frame, {32, 24, kHighest, kHighest}), Sharpness(frame));
}

TEST_F(FaceVarianceOfLaplacian, OfAUniformFrameUnderACoveringEllipseIsZero) {
    const cv::Mat frame(31, 47, CV_8UC3, cv::Scalar(12, 200, 77));
    EXPECT_EQ(Measure(frame, Covering(frame.size())), 0.0F);
}

TEST_F(FaceVarianceOfLaplacian, OfABlackFrameIsZeroUnderAnyEllipse) {
    const cv::Mat frame = cv::Mat::zeros(31, 47, CV_8UC3);
    EXPECT_EQ(Measure(frame, {20, 15, 8, 6}), 0.0F);
}

TEST_F(FaceVarianceOfLaplacian, OfAUniformFrameIsWhatTheEllipsesBorderGives) {
    const Ellipse face{20, 15, 9, 6};
    const cv::Mat frame(31, 47, CV_8UC3, cv::Scalar::all(120));  // grey 120
    cv::Mat disc = cv::Mat::zeros(31, 47, CV_8UC1);
    cv::ellipse(disc, cv::Point(face.x, face.y), cv::Size(face.halfWidth, face.halfHeight), 0.0, 0.0, 360.0,
                cv::Scalar(120), -1);
    const auto deviation = static_cast<float>(DeviationOfLaplacian(disc));
    EXPECT_GT(deviation, 0.0F);
    EXPECT_EQ(Measure(frame, face), deviation * deviation);
}

TEST_F(FaceVarianceOfLaplacian, IgnoresDetailOutsideTheEllipse) {
    const Ellipse face{32, 24, 14, 10};
    const cv::Mat uniform(48, 64, CV_8UC3, cv::Scalar::all(90));
    for (uint64_t seed = 0; seed < 10; ++seed) {
        cv::Mat detailed = RandomFrame(64, 48, seed);
        cv::ellipse(detailed, cv::Point(32, 24), cv::Size(14, 10), 0.0, 0.0, 360.0, cv::Scalar::all(90), -1);
        ASSERT_GT(Sharpness(detailed), 1000.0F);
        EXPECT_EQ(Measure(detailed, face), Measure(uniform, face)) << "seed " << seed;
    }
}

TEST_F(FaceVarianceOfLaplacian, SeesDetailInsideTheEllipse) {
    const Ellipse face{32, 24, 14, 10};
    cv::Mat frame(48, 64, CV_8UC3, cv::Scalar::all(90));
    const float uniform = Measure(frame, face);
    cv::line(frame, {32, 20}, {32, 28}, cv::Scalar::all(250));
    EXPECT_GT(Measure(frame, face), uniform + 10.0F);
}

TEST_F(FaceVarianceOfLaplacian, TakesItsStatisticsOverTheWholeFrame) {
    // One white pixel is what half-axes of 0 leave: it gives -4 x 255, each of its neighbours 255, the others 0.
    for (const cv::Size& size : {cv::Size(5, 5), cv::Size(17, 13), cv::Size(200, 100)}) {
        const cv::Mat white(size, CV_8UC3, cv::Scalar::all(255));
        const double meanOfSquares = (1020.0 * 1020.0 + 4 * 255.0 * 255.0) / size.area();
        EXPECT_FLOAT_EQ(Measure(white, {2, 2, 0, 0}), static_cast<float>(meanOfSquares)) << size;
    }
}

TEST_F(FaceVarianceOfLaplacian, OfAHalfAxisOfZeroIsThatOfALine) {
    const cv::Mat white(15, 15, CV_8UC3, cv::Scalar::all(255));
    cv::Mat row = cv::Mat::zeros(15, 15, CV_8UC3);
    cv::line(row, {3, 7}, {11, 7}, cv::Scalar::all(255));
    EXPECT_EQ(Measure(white, {7, 7, 4, 0}), Sharpness(row));
    EXPECT_EQ(Measure(white, {7, 7, 0, 4}), Sharpness(row.t()));
}

TEST_F(FaceVarianceOfLaplacian, OfAnEllipseOutsideTheFrameIsZero) {
    const cv::Mat frame = RandomFrame(40, 30, 2);
    const Ellipse outside[] = {{-20, 15, 10, 10},        {60, 15, 10, 10},    {20, -20, 10, 10},
                               {20, 50, 10, 10},         {-9, -9, 8, 8},      {kHighest, kHighest, 100, 100},
                               {kLowest, kLowest, 9, 9}, {kHighest, 15, 1, 1}};
    for (const Ellipse& face : outside) EXPECT_EQ(Measure(frame, face), 0.0F) << face;
}

TEST_F(FaceVarianceOfLaplacian, EqualsThePlainStepsAtTheEndsOfTheCoordinates) {
    const cv::Mat frame = RandomFrame(21, 17, 3);
    for (const int x : {kLowest, -kHighest, -1, 0, 10, kHighest}) {
        for (const int y : {kLowest, -kHighest, -1, 0, 8, kHighest}) {
            for (const int halfWidth : {0, 1, 5, kHighest}) {
                for (const int halfHeight : {0, 1, 5, kHighest}) {
                    const Ellipse face{x, y, halfWidth, halfHeight};
                    EXPECT_EQ(Measure(frame, face), Reference(frame, face)) << face;
                }
            }
        }
    }
}

TEST_F(FaceVarianceOfLaplacian, DoesNotDependOnWhatMemoryHeldBefore) {
    // Blocks of the mask's size that were all 255 a moment ago are what an allocation gives next.
    for (const cv::Size& size : {cv::Size(16, 16), cv::Size(64, 48), cv::Size(200, 150)}) {
        const cv::Mat white(size, CV_8UC3, cv::Scalar::all(255));
        const Ellipse face{size.width / 2, size.height / 2, size.width / 4, size.height / 4};
        const float expected = Reference(white, face);
        for (int i = 0; i < 20; ++i) {
            Measure(white, Covering(size));
            EXPECT_EQ(Measure(white, face), expected) << size << ", call " << i;
            EXPECT_EQ(Measure(white, {-100, -100, 3, 3}), 0.0F) << size << ", call " << i;
        }
    }
}

TEST_F(FaceVarianceOfLaplacian, IsTheSquareOfTheNarrowedDeviation) {
    const Ellipse face{9, 11, 7, 8};
    int seedsThatTell = 0;
    for (uint64_t seed = 0; seed < 50; ++seed) {
        const cv::Mat frame = RandomFrame(19, 23, seed);
        const double deviation = DeviationOfLaplacian(quarry::plain::Masked(frame, {9, 11}, {7, 8}));
        const auto narrowed = static_cast<float>(deviation);
        EXPECT_EQ(Measure(frame, face), narrowed * narrowed) << "seed " << seed;
        if (narrowed * narrowed != static_cast<float>(deviation * deviation)) ++seedsThatTell;
    }
    EXPECT_GT(seedsThatTell, 0) << "no seed tells the narrowed square from the narrowed variance";
}

TEST_F(FaceVarianceOfLaplacian, ReadsBlueGreenRed) {
    cv::Mat frame = cv::Mat::zeros(9, 9, CV_8UC3);
    frame.at<cv::Vec3b>(4, 4) = {0, 0, 200};  // red: 0.299 of 200, so 60 as grey
    const double expected = (240.0 * 240.0 + 4 * 60.0 * 60.0) / 81;
    EXPECT_FLOAT_EQ(Measure(frame, Covering(frame.size())), static_cast<float>(expected));
}

TEST_F(FaceVarianceOfLaplacian, ReadsPaddedRowsAsIfPacked) {
    const cv::Mat padded = RandomFrame(24, 16, 7);
    const Ellipse face{9, 8, 7, 6};
    Image image = ImageOf(padded);
    image.width = 20;  // the stride still says 24 pixels
    const cv::Mat skewed(16, 20, CV_8UC3, padded.data);
    EXPECT_EQ(Measure(image, face), Reference(skewed, face));
    EXPECT_NE(Measure(image, face), Reference(padded.colRange(0, 20).clone(), face));
}

TEST_F(FaceVarianceOfLaplacian, RefusesNegativeHalfAxes) {
    const cv::Mat frame = RandomFrame(20, 16, 10);
    for (const Ellipse& face : {Ellipse{9, 8, -1, 5}, Ellipse{9, 8, 5, -1}, Ellipse{9, 8, kLowest, kLowest}}) {
        ExpectRefusal(ImageOf(frame), face);
    }
}

TEST_F(FaceVarianceOfLaplacian, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    ExpectRefusal({nullptr, 4, 4, 12, 0}, {2, 2, 1, 1});
}

TEST_F(FaceVarianceOfLaplacian, RefusesAnEmptyFrame) {
    uint8_t pixel[3] = {};
    ExpectRefusal({nullptr, 0, 0, 0, 0}, {2, 2, 1, 1});
    ExpectRefusal({pixel, 0, 5, 0, 0}, {2, 2, 1, 1});
    ExpectRefusal({pixel, 5, 0, 15, 0}, {2, 2, 1, 1});
}

TEST_F(FaceVarianceOfLaplacian, RefusesANegativeSize) {
    uint8_t pixel[3] = {};
    ExpectRefusal({pixel, -1, 5, 0, 0}, {2, 2, 1, 1});
    ExpectRefusal({pixel, 5, -1, 15, 0}, {2, 2, 1, 1});
    ExpectRefusal({pixel, -5, -5, 0, 0}, {2, 2, 1, 1});
}

}  // namespace
