#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>
#include <vector>

#include "plain/VarianceOfLaplacian.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using quarry::plain::DeviationOfLaplacian;
using quarry::plain::Sharpness;

class VarianceOfLaplacian : public ProcessorTest<operations::VarianceOfLaplacian> {
protected:
    float Measure(const Image& image) { return Call({0, image})->Variance; }
    float Measure(const cv::Mat& frame) { return Measure(ImageOf(frame)); }
    void ExpectRefusal(const Image& image) { ProcessorTest::ExpectRefusal<cv::Exception>({0, image}); }
};

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 3}, {17, 13}, {64, 48}, {333, 251}, {640, 480}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 4; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            EXPECT_EQ(Measure(frame), Sharpness(frame)) << size << ", seed " << seed;
        }
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsForAnyNumberOfPixels) {
    cv::RNG random(5);
    for (int height = 1; height <= 40; ++height) {
        for (int width = 1; width <= 40; ++width) {
            const cv::Mat noise = RandomFrame(width, height, 3);
            const cv::Mat faint = noise / random.uniform(2, 60);
            EXPECT_EQ(Measure(noise), Sharpness(noise)) << noise.size();
            EXPECT_EQ(Measure(faint), Sharpness(faint)) << faint.size();
        }
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnTheStrongestContrast) {
    // Rows of more than 2064 pixels have squares whose sum does not fit 32 bits.
    const cv::Size sizes[] = {{1, 1}, {2, 2}, {5, 4}, {2065, 3}, {2066, 3}, {2067, 3}, {4131, 5}, {9001, 4}, {3, 5000}};
    for (const cv::Size& size : sizes) {
        for (const int period : {1, 2, 3}) {
            cv::Mat chequered(size, CV_8UC3);
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    chequered.at<cv::Vec3b>(y, x) = cv::Vec3b::all((x / period + y / period) % 2 == 0 ? 255 : 0);
                }
            }
            EXPECT_EQ(Measure(chequered), Sharpness(chequered)) << size << ", period " << period;
        }
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnALargeFrame) {
    for (uint64_t seed = 0; seed < 3; ++seed) {
        const cv::Mat frame = RandomFrame(3001, 2003, seed);
        EXPECT_EQ(Measure(frame), Sharpness(frame)) << "seed " << seed;
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnGradients) {
    // Here the border alone gives the mean.
    cv::Mat frame(60, 80, CV_8UC3);
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 80; ++x) frame.at<cv::Vec3b>(y, x) = cv::Vec3b::all(static_cast<uint8_t>(2 * x + y));
    }
    EXPECT_EQ(Measure(frame), Sharpness(frame));
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(20);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(Measure(frames[i]), Sharpness(frames[i])) << "frame " << i;
    }
}

TEST_F(VarianceOfLaplacian, OfOneWhitePixelIsWhatTheMaskGives) {
    cv::Mat frame = cv::Mat::zeros(3, 3, CV_8UC3);
    frame.at<cv::Vec3b>(1, 1) = {255, 255, 255};
    // The centre gives -4 x 255; each pixel beside it gives 2 x 255, once as its neighbour and once reflected.
    const double meanOfSquares = (1020.0 * 1020.0 + 4 * 510.0 * 510.0) / 9;
    const double mean = (4 * 510.0 - 1020.0) / 9;
    EXPECT_FLOAT_EQ(Measure(frame), static_cast<float>(meanOfSquares - mean * mean));
}

TEST_F(VarianceOfLaplacian, OfAUniformFrameIsZero) {
    const cv::Mat frame(31, 47, CV_8UC3, cv::Scalar(12, 200, 77));
    EXPECT_EQ(Measure(frame), 0.0F);
}

TEST_F(VarianceOfLaplacian, FallsWithBlur) {
    const cv::Mat sharp = RandomFrame(64, 64, 3);
    cv::Mat blurred;
    cv::GaussianBlur(sharp, blurred, {0, 0}, 2.0);
    EXPECT_GT(Measure(sharp), 10 * Measure(blurred));
}

TEST_F(VarianceOfLaplacian, IsTheSquareOfTheNarrowedDeviation) {
    int seedsThatTell = 0;
    for (uint64_t seed = 0; seed < 50; ++seed) {
        const cv::Mat frame = RandomFrame(19, 23, seed);
        const double deviation = DeviationOfLaplacian(quarry::plain::GreyOf(frame));
        const auto narrowed = static_cast<float>(deviation);
        EXPECT_EQ(Measure(frame), narrowed * narrowed) << "seed " << seed;
        if (narrowed * narrowed != static_cast<float>(deviation * deviation)) ++seedsThatTell;
    }
    EXPECT_GT(seedsThatTell, 0) << "no seed tells the narrowed square from the narrowed variance";
}

TEST_F(VarianceOfLaplacian, ReadsPaddedRowsAsIfPacked) {
    const int width = 20;
    const int height = 16;
    const cv::Mat padded = RandomFrame(width + 4, height, 7);
    Image image = ImageOf(padded);
    image.width = width;  // the stride still says width + 4 pixels
    const cv::Mat skewed(height, width, CV_8UC3, padded.data);
    EXPECT_EQ(Measure(image), Sharpness(skewed));
    EXPECT_NE(Measure(image), Sharpness(padded.colRange(0, width).clone()));
}

TEST_F(VarianceOfLaplacian, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    ExpectRefusal({nullptr, 4, 4, 12, 0});
}

TEST_F(VarianceOfLaplacian, RefusesAnEmptyFrame) {
    uint8_t pixel[3] = {};
    ExpectRefusal({nullptr, 0, 0, 0, 0});
    ExpectRefusal({pixel, 0, 5, 0, 0});
    ExpectRefusal({pixel, 5, 0, 15, 0});
}

TEST_F(VarianceOfLaplacian, RefusesANegativeSize) {
    uint8_t pixel[3] = {};
    ExpectRefusal({pixel, -1, 5, 0, 0});
    ExpectRefusal({pixel, 5, -1, 15, 0});
    ExpectRefusal({pixel, -5, -5, 0, 0});
}

}  // namespace
