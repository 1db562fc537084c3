#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry/Quarry.h"
#include "plain/DenseOpticalFlowCalculator.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// The calculator under test, driven as a host drives it.
class Calculator {
public:
    explicit Calculator(float detail = 0.5F, float quality = 0.3F) {
        auto options = FramedOptions<OFCOptions>(0xA5);
        options->Detail = detail;
        options->Quality = quality;
        CreateCVDenseOpticalFlowCalculator(&handle, options.record());
    }
    Calculator(const Calculator&) = delete;
    Calculator& operator=(const Calculator&) = delete;
    ~Calculator() { Dispose(handle); }

    int Update(const Image& image) {
        auto input = FramedInput<OFCData>(0xA5);
        input->Image = image;
        return ::Update(handle, input.as<UpdateData>());
    }
    int Update(const cv::Mat& frame) {
        Image image = ImageOf(frame, ~uint64_t{0});
        image.stride = -7;  // not consulted
        return Update(image);
    }

    AbsVectorMatrix* Result() {
        auto result = FramedResult<OFCResult>(0xA5);
        GetUpdateResult(handle, result.as<UpdateResult>());
        EXPECT_EQ(result->Status, 0);
        return result->FlowMatrix;
    }

    /// The current flow; a header over the calculator's own buffer.
    cv::Mat Flow() {
        const AbsVectorMatrix& matrix = *Result();
        return cv::Mat(matrix.height, matrix.width, CV_32FC2, matrix.data);
    }

    void* handle = nullptr;
};

using Parameters = quarry::plain::FlowParameters;
using quarry::plain::kMiddle;

/// For messages.
std::string Said(const Parameters& p) {
    std::ostringstream out;
    out << "window " << p.window << ", " << p.levels << " levels, " << p.iterations << " iterations, flags " << p.flags;
    return out.str();
}

cv::Mat Grey(const cv::Mat& frame) {
    return quarry::plain::GreyOfRgb(frame);
}

cv::Mat GreyFlow(const cv::Mat& previous, const cv::Mat& current, const Parameters& p,
                 double scale = static_cast<double>(0.4F)) {
    cv::Mat flow;
    quarry::plain::FindFlow(previous, current, flow, p, scale);
    return flow;
}

cv::Mat Reference(const cv::Mat& previous, const cv::Mat& current, const Parameters& p = kMiddle) {
    return GreyFlow(Grey(previous), Grey(current), p);
}

bool SameBits(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && a.type() == b.type() && a.isContinuous() && b.isContinuous() &&
           (a.empty() || std::memcmp(a.data, b.data, a.total() * a.elemSize()) == 0);
}

bool IsZero(const cv::Mat& flow) {
    return SameBits(flow, cv::Mat::zeros(flow.size(), CV_32FC2));
}

/// Soft texture, seen through a window that is moved by (x, y).
cv::Mat Texture(int width, int height, int x, int y, uint64_t seed = 3) {
    const int margin = 16;
    cv::Mat whole = RandomFrame(width + 2 * margin, height + 2 * margin, seed);
    cv::GaussianBlur(whole, whole, {0, 0}, 2.5);
    cv::normalize(whole, whole, 0, 255, cv::NORM_MINMAX);
    return whole(cv::Rect(margin - x, margin - y, width, height)).clone();
}

/// Two pictures of one scene in motion: texture that drifts, a square that moves faster.
std::vector<cv::Mat> Motion(int width, int height) {
    std::vector<cv::Mat> frames;
    for (int step = 0; step < 2; ++step) {
        frames.push_back(Texture(width, height, 2 * step, step));
        const int side = std::max(1, std::min(width, height) / 4);
        cv::rectangle(frames.back(), cv::Rect(width / 3 + 7 * step, height / 3 + 5 * step, side, side),
                      cv::Scalar(240, 30, 130), cv::FILLED);
    }
    return frames;
}

/// Flow between the two frames of a scene.
cv::Mat FlowOf(Calculator& calculator, const std::vector<cv::Mat>& scene) {
    EXPECT_EQ(calculator.Update(scene[0]), Accumulating);
    EXPECT_EQ(calculator.Update(scene[1]), Ready);
    return calculator.Flow().clone();
}

TEST(DenseOpticalFlow, EqualsThePlainCallOverRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(30);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    ASSERT_EQ(frames.size(), 30U);
    Calculator calculator;
    cv::Mat previous;
    double most = 0.0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        cv::Mat frame;
        cv::resize(frames[i], frame, {384, 288}, 0, 0, cv::INTER_AREA);
        ASSERT_EQ(calculator.Update(frame), i == 0 ? Accumulating : Ready) << "frame " << i;
        if (i > 0) {
            const cv::Mat expected = Reference(previous, frame);
            ASSERT_TRUE(SameBits(calculator.Flow(), expected)) << "frame " << i;
            most = std::max(most, cv::norm(expected, cv::NORM_INF));
        }
        previous = frame;
    }
    EXPECT_GT(most, 1.0) << "the clip shows nothing that moves";
}

TEST(DenseOpticalFlow, EqualsThePlainCallOnRealFramesOfFullSize) {
    const std::vector<cv::Mat> frames = PedestrianFrames(4);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    Calculator calculator(0.6F, 0.2F);
    calculator.Update(frames[0]);
    for (std::size_t i = 1; i < frames.size(); ++i) {
        EXPECT_EQ(calculator.Update(frames[i]), Ready);
        EXPECT_TRUE(SameBits(calculator.Flow(), Reference(frames[i - 1], frames[i], {15, 2, 2, 0}))) << "frame " << i;
    }
}

TEST(DenseOpticalFlow, EqualsThePlainCallOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 3}, {17, 13}, {101, 67}, {240, 200}};
    for (const cv::Size& size : sizes) {
        Calculator calculator;
        cv::Mat previous = RandomFrame(size.width, size.height, 0);
        calculator.Update(previous);
        for (uint64_t seed = 1; seed < 4; ++seed) {
            const cv::Mat frame = RandomFrame(size.width, size.height, seed);
            EXPECT_EQ(calculator.Update(frame), Ready) << size << ", seed " << seed;
            EXPECT_TRUE(SameBits(calculator.Flow(), Reference(previous, frame))) << size << ", seed " << seed;
            previous = frame;
        }
    }
}

TEST(DenseOpticalFlow, IsWherePixelsMovedTo) {
    Calculator calculator(0.0F, 0.5F);
    const cv::Mat flow = FlowOf(calculator, {Texture(160, 120, 0, 0), Texture(160, 120, 3, -2)});
    const cv::Scalar mean = cv::mean(flow(cv::Rect(30, 30, 100, 60)));
    EXPECT_NEAR(mean[0], 3.0, 0.2);
    EXPECT_NEAR(mean[1], -2.0, 0.2);
}

TEST(DenseOpticalFlow, BetweenIdenticalFramesIsNearZero) {
    Calculator calculator;
    const cv::Mat frame = Texture(160, 120, 0, 0);
    EXPECT_LT(cv::norm(FlowOf(calculator, {frame, frame}), cv::NORM_INF), 0.1);
}

struct OptionCase {
    float value;
    Parameters expected;
};

/// Checks what each value of an option comes to, on a scene that tells the outcomes apart.
/// @param pick  an option's value as (detail, quality)
template <class Pick>
void ExpectParameters(const std::vector<OptionCase>& cases, Pick pick) {
    const std::vector<cv::Mat> scene = Motion(240, 200);
    std::vector<cv::Mat> flows;
    flows.reserve(cases.size());
    for (const OptionCase& c : cases) flows.push_back(Reference(scene[0], scene[1], c.expected));
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto [detail, quality] = pick(cases[i].value);
        Calculator calculator(detail, quality);
        EXPECT_TRUE(SameBits(FlowOf(calculator, scene), flows[i]))
            << cases[i].value << " is " << Said(cases[i].expected);
        for (std::size_t k = 0; k < i; ++k) {
            const bool same = std::memcmp(&cases[i].expected, &cases[k].expected, sizeof(Parameters)) == 0;
            EXPECT_EQ(SameBits(flows[i], flows[k]), same)
                << "the scene does not tell " << Said(cases[i].expected) << " from " << Said(cases[k].expected);
        }
    }
}

TEST(DenseOpticalFlow, DetailSetsTheWindow) {
    ExpectParameters({{0.0F, {27, 1, 1, 0}},
                      {-0.0F, {27, 1, 1, 0}},
                      {0.05F, {26, 1, 1, 0}},
                      {0.25F, {22, 1, 1, 0}},
                      {0.5F, {17, 1, 1, 0}},
                      {0.6F, {15, 1, 1, 0}},  // 14 in higher precision
                      {0.99F, {7, 1, 1, 0}},
                      {1.0F, {7, 1, 1, 0}},
                      {1.0000001F, {18, 1, 1, 0}},
                      {1.5F, {18, 1, 1, 0}},
                      {-0.1F, {18, 1, 1, 0}},
                      {-1e-40F, {18, 1, 1, 0}},
                      {kInfinity, {18, 1, 1, 0}},
                      {kNan, {18, 1, 1, 0}}},
                     [](float detail) { return std::pair(detail, 0.1F); });
}

TEST(DenseOpticalFlow, QualitySetsLevelsIterationsAndTheGaussianWindow) {
    const int gaussian = 256;
    ExpectParameters({{0.0F, {17, 0, 1, 0}},
                      {-0.0F, {17, 0, 1, 0}},
                      {1e-40F, {17, 0, 0, 0}},
                      {0.05F, {17, 0, 0, 0}},
                      {0.1F, {17, 1, 1, 0}},
                      {0.29F, {17, 2, 2, 0}},
                      {0.5F, {17, 5, 5, 0}},
                      {0.7F, {17, 7, 7, 0}},                // 6 in higher precision
                      {0.70000005F, {17, 7, 7, gaussian}},  // the next float
                      {0.71F, {17, 7, 7, gaussian}},
                      {0.9F, {17, 9, 9, gaussian}},  // 8 in higher precision
                      {1.0F, {17, 10, 10, gaussian}},
                      {1.0000001F, {17, 5, 3, 0}},
                      {1.5F, {17, 5, 3, 0}},
                      {-0.1F, {17, 5, 3, 0}},
                      {-1e-40F, {17, 5, 3, 0}},
                      {kInfinity, {17, 5, 3, 0}},
                      {kNan, {17, 5, 3, 0}}},
                     [](float quality) { return std::pair(0.5F, quality); });
}

TEST(DenseOpticalFlow, KeepsAllDefaultsWithoutValidOptions) {
    const std::vector<cv::Mat> scene = Motion(240, 200);
    Calculator calculator(kNan, kNan);
    EXPECT_TRUE(SameBits(FlowOf(calculator, scene), Reference(scene[0], scene[1], {18, 5, 3, 0})));
}

TEST(DenseOpticalFlow, GoesBeyondThreeLevelsOnLargeFrames) {
    const int side = 1260;  // the fourth level down has 32 pixels, the fewest that one may have
    const std::vector<cv::Mat> scene = Motion(side, side);
    const cv::Mat expected = Reference(scene[0], scene[1], {18, 5, 3, 0});
    ASSERT_FALSE(SameBits(expected, Reference(scene[0], scene[1], {18, 3, 3, 0}))) << "the scene tells no levels apart";
    Calculator calculator(kNan, kNan);
    EXPECT_TRUE(SameBits(FlowOf(calculator, scene), expected));
}

TEST(DenseOpticalFlow, IsZeroBelowATenthOfQuality) {
    Calculator calculator(0.5F, 0.05F);
    EXPECT_TRUE(IsZero(FlowOf(calculator, Motion(240, 200))));
}

TEST(DenseOpticalFlow, ScalesItsPyramidByAFloat) {
    const std::vector<cv::Mat> scene = Motion(240, 200);
    const cv::Mat previous = Grey(scene[0]);
    const cv::Mat current = Grey(scene[1]);
    ASSERT_FALSE(SameBits(GreyFlow(previous, current, kMiddle, static_cast<double>(0.4F)),
                          GreyFlow(previous, current, kMiddle, 0.4)))
        << "the scene does not tell 0.4F from 0.4";
    Calculator calculator;
    EXPECT_TRUE(SameBits(FlowOf(calculator, scene), GreyFlow(previous, current, kMiddle, static_cast<double>(0.4F))));
}

TEST(DenseOpticalFlow, ReadsFramesAsRedGreenBlue) {
    // What is in the first channel moves to the right, what is in the last one to the left.
    std::vector<cv::Mat> scene;
    for (int step = 0; step < 2; ++step) {
        cv::Mat channels[3];
        cv::extractChannel(Texture(120, 100, 2 * step, 0, 5), channels[0], 0);
        channels[1] = cv::Mat::zeros(100, 120, CV_8U);
        cv::extractChannel(Texture(120, 100, -2 * step, 0, 6), channels[2], 0);
        scene.emplace_back();
        cv::merge(channels, 3, scene.back());
    }
    // Grey by hand: 0.299 of the first channel and 0.114 of the last, or the other way round.
    const auto flow = [&](double first, double last) {
        cv::Mat grey[2];
        for (std::size_t i = 0; i < 2; ++i) {
            cv::transform(scene[i], grey[i], cv::Mat(cv::Matx13d(first, 0.587, last)));
        }
        return GreyFlow(grey[0], grey[1], kMiddle);
    };
    Calculator calculator;
    const cv::Mat result = FlowOf(calculator, scene);
    EXPECT_TRUE(SameBits(result, Reference(scene[0], scene[1])));
    const double asRedGreenBlue = cv::norm(result, flow(0.299, 0.114), cv::NORM_L1);
    const double asBlueGreenRed = cv::norm(result, flow(0.114, 0.299), cv::NORM_L1);
    EXPECT_LT(20 * asRedGreenBlue, asBlueGreenRed);
}

TEST(DenseOpticalFlow, IsZeroUntilThereIsASecondFrame) {
    Calculator calculator;
    EXPECT_EQ(calculator.Update(Texture(40, 30, 0, 0)), Accumulating);
    const AbsVectorMatrix& matrix = *calculator.Result();
    EXPECT_EQ(matrix.width, 40);
    EXPECT_EQ(matrix.height, 30);
    EXPECT_TRUE(IsZero(calculator.Flow()));
}

TEST(DenseOpticalFlow, IsBetweenTheLastTwoFrames) {
    Calculator calculator;
    std::vector<cv::Mat> frames;
    for (int step = 0; step < 5; ++step) {
        frames.push_back(Texture(60, 50, step * step, step));
        calculator.Update(frames.back());
    }
    EXPECT_TRUE(SameBits(calculator.Flow(), Reference(frames[3], frames[4])));
}

TEST(DenseOpticalFlow, IsWrittenStraightIntoTheBufferTheHostHolds) {
    Calculator calculator;
    const cv::Mat frames[] = {Texture(60, 50, 0, 0), Texture(60, 50, 2, 1), Texture(60, 50, 4, 4),
                              Texture(60, 50, 6, 9)};
    calculator.Update(frames[0]);
    const cv::Mat held = calculator.Flow();  // asked for once
    for (std::size_t i = 1; i < std::size(frames); ++i) {
        calculator.Update(frames[i]);
        EXPECT_TRUE(SameBits(held, Reference(frames[i - 1], frames[i]))) << "frame " << i;
    }
    EXPECT_EQ(calculator.Flow().data, held.data);
}

TEST(DenseOpticalFlow, BeginsAnewWithAFrameOfAnotherSize) {
    Calculator calculator;
    const cv::Size sizes[] = {{40, 30}, {40, 30}, {30, 40}, {30, 40}, {41, 30}, {40, 30}, {40, 31}, {40, 31}};
    cv::Mat previous;
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        SCOPED_TRACE(testing::Message() << "frame " << i);
        const cv::Mat frame = Texture(sizes[i].width, sizes[i].height, static_cast<int>(i), 0);
        if (frame.size() == previous.size()) {
            EXPECT_EQ(calculator.Update(frame), Ready);
            EXPECT_TRUE(SameBits(calculator.Flow(), Reference(previous, frame)));
        } else {
            EXPECT_EQ(calculator.Update(frame), Accumulating);
            EXPECT_EQ(calculator.Flow().size(), frame.size());
            EXPECT_TRUE(IsZero(calculator.Flow()));
        }
        previous = frame;
    }
}

TEST(DenseOpticalFlow, KeepsReferenceAndFlowOverAFrameWithoutPixels) {
    Calculator calculator;
    const cv::Mat first = Texture(60, 50, 0, 0);
    const cv::Mat second = Texture(60, 50, 2, 0);
    const cv::Mat third = Texture(60, 50, 3, 3);
    calculator.Update(first);
    calculator.Update(second);
    const cv::Mat flow = calculator.Flow().clone();
    EXPECT_EQ(calculator.Update(Image{nullptr, 60, 50, 180, 0}), NoResult);
    EXPECT_EQ(calculator.Update(Image{nullptr, 60, 50, 180, 0}), NoResult);
    EXPECT_TRUE(SameBits(calculator.Flow(), flow));
    EXPECT_EQ(calculator.Update(third), Ready);
    EXPECT_TRUE(SameBits(calculator.Flow(), Reference(second, third)));
}

TEST(DenseOpticalFlow, KeepsItsOnlyFrameOverAFrameWithoutPixels) {
    Calculator calculator;
    const cv::Mat first = Texture(60, 50, 0, 0);
    const cv::Mat second = Texture(60, 50, 2, 0);
    EXPECT_EQ(calculator.Update(first), Accumulating);
    EXPECT_EQ(calculator.Update(Image{nullptr, 60, 50, 180, 0}), NoResult);
    EXPECT_TRUE(IsZero(calculator.Flow()));
    EXPECT_EQ(calculator.Update(second), Ready);
    EXPECT_TRUE(SameBits(calculator.Flow(), Reference(first, second)));
}

TEST(DenseOpticalFlow, DoesNotTakeAFirstFrameWithoutPixelsForAFrame) {
    Calculator calculator;
    EXPECT_EQ(calculator.Update(Image{nullptr, 60, 50, 180, 0}), NoResult);
    EXPECT_EQ(calculator.Flow().size(), cv::Size(60, 50));
    EXPECT_TRUE(IsZero(calculator.Flow()));
    EXPECT_EQ(FlowOf(calculator, Motion(60, 50)).size(), cv::Size(60, 50));
}

TEST(DenseOpticalFlow, BeginsAnewAfterAFrameWithoutPixelsOfAnotherSize) {
    Calculator calculator;
    const cv::Mat frame = Texture(60, 50, 0, 0);
    calculator.Update(frame);
    EXPECT_EQ(calculator.Update(Image{nullptr, 0, 0, 0, 0}), NoResult);
    EXPECT_EQ(calculator.Flow().size(), cv::Size(0, 0));
    EXPECT_EQ(calculator.Update(frame), Accumulating);
    EXPECT_EQ(calculator.Update(Image{nullptr, 50, 60, 150, 0}), NoResult);
    EXPECT_EQ(calculator.Flow().size(), cv::Size(50, 60));
    EXPECT_EQ(calculator.Update(frame), Accumulating);
}

TEST(DenseOpticalFlow, KeepsACopyOfTheFrame) {
    Calculator calculator;
    cv::Mat frame = Texture(60, 50, 0, 0);
    const cv::Mat first = frame.clone();
    const cv::Mat second = Texture(60, 50, 2, 1);
    calculator.Update(frame);
    frame.setTo(0);
    frame.release();
    calculator.Update(second);
    EXPECT_TRUE(SameBits(calculator.Flow(), Reference(first, second)));
}

TEST(DenseOpticalFlow, ReadsPaddedRowsAsIfPacked) {
    Calculator calculator;
    const cv::Mat padded[] = {Texture(64, 50, 0, 0), Texture(64, 50, 2, 1)};
    for (const cv::Mat& frame : padded) {
        Image image = ImageOf(frame);
        image.width = 60;  // the stride still says 64 pixels
        calculator.Update(image);
    }
    const cv::Mat first(50, 60, CV_8UC3, padded[0].data);
    const cv::Mat second(50, 60, CV_8UC3, padded[1].data);
    EXPECT_TRUE(SameBits(calculator.Flow(), Reference(first, second)));
}

TEST(DenseOpticalFlow, RefusesAnEmptyFrameThatHasPixels) {
    uint8_t pixel[3] = {};
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0)}) {
        Calculator calculator;
        calculator.Update(Texture(60, 50, 0, 0));
        EXPECT_THROW(calculator.Update(Image{pixel, size.width, size.height, 0, 0}), cv::Exception) << size;
        const std::vector<cv::Mat> scene = Motion(60, 50);
        EXPECT_TRUE(SameBits(FlowOf(calculator, scene), Reference(scene[0], scene[1]))) << size;
    }
}

TEST(DenseOpticalFlow, BeginsAnewAfterAFrameOfNegativeSize) {
    uint8_t pixel[3] = {};
    for (const cv::Size& size : {cv::Size(-60, 50), cv::Size(60, -50), cv::Size(-60, -50)}) {
        for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
            SCOPED_TRACE(testing::Message() << size);
            Calculator calculator;
            const std::vector<cv::Mat> scene = Motion(60, 50);
            calculator.Update(scene[1]);
            const Image negative{data, size.width, size.height, 0, 0};
            EXPECT_THROW(calculator.Update(negative), cv::Exception);
            EXPECT_THROW(calculator.Result(), std::logic_error);
            EXPECT_THROW(calculator.Update(negative), cv::Exception) << "not taken for the size in use";
            EXPECT_TRUE(SameBits(FlowOf(calculator, scene), Reference(scene[0], scene[1])));
        }
    }
}

TEST(DenseOpticalFlow, RefusesASizeWhoseBuffersWouldWrapToASmallOne) {
    Calculator calculator;
    const std::vector<cv::Mat> scene = Motion(60, 50);
    calculator.Update(scene[0]);
    uint8_t pixel[3] = {};
    try {
        calculator.Update(Image{pixel, 65536, 65536, 0, 0});
        FAIL() << "no exception";
    } catch (const std::invalid_argument& refusal) {
        EXPECT_STREQ(refusal.what(), "OFCData.Image: 65536 x 65536 pixels; at most 2147483647 are allowed");
    }
    EXPECT_EQ(calculator.Update(scene[1]), Ready) << "the calculator is as it was";
    EXPECT_TRUE(SameBits(calculator.Flow(), Reference(scene[0], scene[1])));
}

TEST(DenseOpticalFlow, BeginsAnewAfterAFrameThatCannotBeAllocated) {
    Calculator calculator;
    const std::vector<cv::Mat> scene = Motion(60, 50);
    calculator.Update(scene[1]);
    uint8_t pixel[3] = {};
    EXPECT_ANY_THROW(calculator.Update(Image{pixel, 32768, 65536, 0, 0}));  // 2 ^ 31 wraps to a negative size
    EXPECT_THROW(calculator.Result(), std::logic_error);
    EXPECT_TRUE(SameBits(FlowOf(calculator, scene), Reference(scene[0], scene[1])));
}

}  // namespace
