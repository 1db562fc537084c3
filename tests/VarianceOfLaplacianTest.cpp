#include <gtest/gtest.h>

#include <cstring>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

/// One processor, called through the drivers.
class VarianceOfLaplacian : public testing::Test {
protected:
    VarianceOfLaplacian() {
        auto options = FramedOptions<ProcessOptions>();
        CreateCVLaplacianVarianceProcessor(&handle, options.record());
    }
    ~VarianceOfLaplacian() override { Dispose(handle); }

    float Measure(const Image& image) {
        auto input = FramedInput<VoLInputData>(0xA5);
        input->Image = image;
        auto result = FramedResult<VoLOutputData>(0xA5);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        return result->Variance;
    }

    /// A call that must throw, and change nothing.
    void ExpectRefusal(const Image& image) {
        auto input = FramedInput<VoLInputData>();
        input->Image = image;
        RefusalOfInput<cv::Exception, VoLOutputData>(handle, input);
    }

    void* handle = nullptr;
};

double DeviationOfLaplacian(const cv::Mat& frame) {
    cv::Mat grey;
    cv::Mat laplacian;
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY, 0);
    cv::Laplacian(grey, laplacian, CV_64F, 1, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::meanStdDev(laplacian, mean, deviation);
    return deviation[0];
}

float Reference(const cv::Mat& frame) {
    const auto deviation = static_cast<float>(DeviationOfLaplacian(frame));
    return deviation * deviation;
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 3}, {17, 13}, {64, 48}, {333, 251}, {640, 480}};
    for (const cv::Size& size : sizes) {
        for (uint64_t seed = 0; seed < 4; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            EXPECT_EQ(Measure(ImageOf(frame)), Reference(frame)) << size << ", seed " << seed;
        }
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsForAnyNumberOfPixels) {
    cv::RNG random(5);
    for (int height = 1; height <= 40; ++height) {
        for (int width = 1; width <= 40; ++width) {
            const cv::Mat noise = RandomFrame(width, height, 3);
            const cv::Mat faint = noise / random.uniform(2, 60);
            EXPECT_EQ(Measure(ImageOf(noise)), Reference(noise)) << noise.size();
            EXPECT_EQ(Measure(ImageOf(faint)), Reference(faint)) << faint.size();
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
            EXPECT_EQ(Measure(ImageOf(chequered)), Reference(chequered)) << size << ", period " << period;
        }
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnALargeFrame) {
    for (uint64_t seed = 0; seed < 3; ++seed) {
        const cv::Mat frame = RandomFrame(3001, 2003, seed);
        EXPECT_EQ(Measure(ImageOf(frame)), Reference(frame)) << "seed " << seed;
    }
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnGradients) {
    // Here the border alone gives the mean.
    cv::Mat frame(60, 80, CV_8UC3);
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 80; ++x) frame.at<cv::Vec3b>(y, x) = cv::Vec3b::all(static_cast<uint8_t>(2 * x + y));
    }
    EXPECT_EQ(Measure(ImageOf(frame)), Reference(frame));
}

TEST_F(VarianceOfLaplacian, EqualsThePlainStepsOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(20);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(Measure(ImageOf(frames[i])), Reference(frames[i])) << "frame " << i;
    }
}

TEST_F(VarianceOfLaplacian, OfOneWhitePixelIsWhatTheMaskGives) {
    cv::Mat frame = cv::Mat::zeros(3, 3, CV_8UC3);
    frame.at<cv::Vec3b>(1, 1) = {255, 255, 255};
    // The centre gives -4 x 255; each pixel beside it gives 2 x 255, once as its neighbour and once reflected.
    const double meanOfSquares = (1020.0 * 1020.0 + 4 * 510.0 * 510.0) / 9;
    const double mean = (4 * 510.0 - 1020.0) / 9;
    EXPECT_FLOAT_EQ(Measure(ImageOf(frame)), static_cast<float>(meanOfSquares - mean * mean));
}

TEST_F(VarianceOfLaplacian, OfAUniformFrameIsZero) {
    const cv::Mat frame(31, 47, CV_8UC3, cv::Scalar(12, 200, 77));
    EXPECT_EQ(Measure(ImageOf(frame)), 0.0F);
}

TEST_F(VarianceOfLaplacian, FallsWithBlur) {
    const cv::Mat sharp = RandomFrame(64, 64, 3);
    cv::Mat blurred;
    cv::GaussianBlur(sharp, blurred, {0, 0}, 2.0);
    EXPECT_GT(Measure(ImageOf(sharp)), 10 * Measure(ImageOf(blurred)));
}

TEST_F(VarianceOfLaplacian, IsTheSquareOfTheNarrowedDeviation) {
    int seedsThatTell = 0;
    for (uint64_t seed = 0; seed < 50; ++seed) {
        const cv::Mat frame = RandomFrame(19, 23, seed);
        const double deviation = DeviationOfLaplacian(frame);
        const auto narrowed = static_cast<float>(deviation);
        EXPECT_EQ(Measure(ImageOf(frame)), narrowed * narrowed) << "seed " << seed;
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
    EXPECT_EQ(Measure(image), Reference(skewed));
    EXPECT_NE(Measure(image), Reference(padded.colRange(0, width).clone()));
}

TEST_F(VarianceOfLaplacian, DoesNotReadStrideOrTimestamp) {
    const cv::Mat frame = RandomFrame(20, 16, 8);
    Image image = ImageOf(frame);
    image.stride = -1;
    image.timestamp = ~uint64_t{0};
    EXPECT_EQ(Measure(image), Reference(frame));
}

TEST_F(VarianceOfLaplacian, LeavesTheFrameAsItIs) {
    const cv::Mat frame = RandomFrame(33, 21, 9);
    const cv::Mat before = frame.clone();
    Measure(ImageOf(frame));
    EXPECT_EQ(std::memcmp(frame.data, before.data, frame.total() * frame.elemSize()), 0);
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

TEST_F(VarianceOfLaplacian, WorksAfterAFailedCall) {
    ExpectRefusal({nullptr, 4, 4, 12, 0});
    const cv::Mat frame = RandomFrame(20, 16, 10);
    EXPECT_EQ(Measure(ImageOf(frame)), Reference(frame));
}

TEST_F(VarianceOfLaplacian, GivingAResultBackChangesNothing) {
    auto result = FramedResult<VoLOutputData>(0x5A);
    DisposeResult(handle, result.as<ProcessResult>());
    for (const unsigned char byte : result.Bytes()) EXPECT_EQ(byte, 0x5A);
}

}  // namespace
