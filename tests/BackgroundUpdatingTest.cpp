#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <vector>

#include "Quarry.Frame/InvokableUpdater.h"
#include "Quarry.OpenCV/BackgroundUpdating.h"
#include "support/Allocations.h"
#include "support/FailingMatrix.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

constexpr uint64_t kSecond = 10'000'000;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Settings {
    float sensitivity = 0.5F;
    int history = 100;
    float adaptationTime = 10.0F;
    float learningSpeedup = 5.0F;
};

/// The model in plain steps, with its own subtractor and its own buffers.
class Reference {
public:
    explicit Reference(const Settings& chosen) : settings(chosen) {}

    int Update(const cv::Mat& image, uint64_t timestamp) {
        if (frame.size() != image.size()) Begin();
        frame = image.clone();
        const float seconds = static_cast<float>(timestamp - last) / 10000000.0F;
        const float period = state == 2 ? settings.adaptationTime : learningPeriod;
        const auto tau = static_cast<float>(static_cast<double>(period) / 2.15);
        const float rate = 1.0F - expf(-seconds / tau);
        subtractor->apply(frame, subtractorMask, static_cast<double>(rate));
        if (last != 0) accumulated += timestamp - last;
        last = timestamp;
        const uint64_t wholeSeconds = accumulated / kSecond;
        state = std::isnan(learningPeriod) || learningPeriod <= static_cast<float>(wholeSeconds) ? 2 : 1;
        return state;
    }

    cv::Mat Background() const {
        cv::Mat background;
        subtractor->getBackgroundImage(background);
        return background;
    }

    cv::Mat Foreground() const {
        const cv::Mat background = Background();
        cv::Mat difference(frame.size(), CV_8UC3);
        for (std::size_t i = 0; i < frame.total() * 3; ++i) {
            difference.data[i] = static_cast<uint8_t>(std::abs(frame.data[i] - background.data[i]));
        }
        cv::Mat grey;
        cv::cvtColor(difference, grey, cv::COLOR_BGR2GRAY);
        const float threshold = 2 * (50.0F - 60.0F) * (settings.sensitivity - 0.5F) + 50.0F;
        for (std::size_t i = 0; i < grey.total(); ++i)
            grey.data[i] = static_cast<float>(grey.data[i]) > threshold ? 255 : 0;
        return grey;
    }

    cv::Mat subtractorMask;

private:
    void Begin() {
        subtractor = cv::createBackgroundSubtractorMOG2(settings.history, 16.0, true);
        last = 0;
        accumulated = 0;
        state = 0;
        learningPeriod = settings.learningSpeedup == 0 ? settings.adaptationTime
                                                       : settings.adaptationTime / settings.learningSpeedup;
    }

    Settings settings;
    cv::Ptr<cv::BackgroundSubtractorMOG2> subtractor;
    cv::Mat frame;
    uint64_t last = 0;
    uint64_t accumulated = 0;
    float learningPeriod = 0;
    int state = 0;
};

/// The model under test, driven as a host drives it. Keeps its last frame, which must live until the result is asked
/// for.
class Model {
public:
    explicit Model(const Settings& settings = {}) {
        auto options = FramedOptions<BackgroundOptions>(0xA5);
        options->Sensitivity = settings.sensitivity;
        options->HistoryLength = settings.history;
        options->AdaptationTime = settings.adaptationTime;
        options->LearningSpeedup = settings.learningSpeedup;
        CreateCVBackgroundModel(&handle, options.record());
    }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;
    ~Model() { Dispose(handle); }

    int Update(const cv::Mat& image, uint64_t timestamp) {
        frame = image.clone();
        return UpdateImage(ImageOf(frame, timestamp));
    }

    int UpdateImage(const Image& image) {
        auto input = FramedInput<BackgroundData>(0xA5);
        input->Image = image;
        input->Image.stride = -7;  // not consulted
        return ::Update(handle, input.as<UpdateData>());
    }

    BackgroundResult Result() {
        auto result = FramedResult<BackgroundResult>();
        GetUpdateResult(handle, result.as<UpdateResult>());
        return *result;
    }

    void* handle = nullptr;
    cv::Mat frame;
};

bool SameBytes(const uint8_t* bytes, const cv::Mat& expected) {
    return expected.empty() || std::memcmp(bytes, expected.data, expected.total() * expected.elemSize()) == 0;
}

void ExpectSameResult(Model& model, const Reference& reference, uint64_t timestamp) {
    const BackgroundResult result = model.Result();
    const cv::Mat background = reference.Background();
    EXPECT_EQ(result.Status, 0);
    EXPECT_TRUE(SameBytes(result.BackgroundImage->data, background));
    EXPECT_TRUE(SameBytes(result.ForegroundMask, reference.Foreground()));
    for (const Image* image : {result.BackgroundImage, result.ReservedImage}) {
        EXPECT_EQ(image->width, background.cols);
        EXPECT_EQ(image->height, background.rows);
        EXPECT_EQ(image->stride, background.cols * 3);
        EXPECT_EQ(image->timestamp, timestamp);
    }
}

/// Feeds both and compares state and result after every frame.
void ExpectSame(Model& model, Reference& reference, const cv::Mat& frame, uint64_t timestamp) {
    EXPECT_EQ(model.Update(frame, timestamp), reference.Update(frame, timestamp));
    ExpectSameResult(model, reference, timestamp);
}

TEST(BackgroundUpdating, EqualsThePlainStepsOverRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(200);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    ASSERT_EQ(frames.size(), 200U);
    const Settings settings;
    Model model(settings);
    Reference reference(settings);
    int foreground = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "frame " << i);
        ExpectSame(model, reference, frames[i], kSecond * 1000 + i * kSecond / 10);
        foreground += cv::countNonZero(reference.Foreground());
    }
    EXPECT_GT(foreground, 0) << "the clip shows nothing that moves";
}

TEST(BackgroundUpdating, HoldsTheSubtractorsMaskUntilTheResultIsAskedFor) {
    const std::vector<cv::Mat> frames = PedestrianFrames(60);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    const Settings settings;
    Model model(settings);
    Reference reference(settings);
    model.Update(frames[0], kSecond);
    reference.Update(frames[0], kSecond);
    const uint8_t* const mask = model.Result().ForegroundMask;
    int shadows = 0;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const uint64_t timestamp = kSecond + i * kSecond / 10;
        model.Update(frames[i], timestamp);
        reference.Update(frames[i], timestamp);
        ASSERT_TRUE(SameBytes(mask, reference.subtractorMask)) << "frame " << i;
        shadows += cv::countNonZero(reference.subtractorMask == 127);
        ExpectSameResult(model, reference, timestamp);
        for (std::size_t p = 0; p < frames[i].total(); ++p)
            ASSERT_TRUE(mask[p] == 0 || mask[p] == 255) << "frame " << i;
    }
    EXPECT_GT(shadows, 0) << "the clip has no shadow that tells one mask from the other";
}

class BackgroundUpdatingScenes : public testing::TestWithParam<cv::Size> {};

TEST_P(BackgroundUpdatingScenes, EqualThePlainSteps) {
    const cv::Size size = GetParam();
    const Settings settings{0.9F, 20, 6.0F, 3.0F};
    Model model(settings);
    Reference reference(settings);
    for (int step = 0; step < 30; ++step) {
        SCOPED_TRACE(testing::Message() << "step " << step);
        ExpectSame(model, reference, MovingSquare(size.width, size.height, step),
                   kSecond * 5 + static_cast<uint64_t>(step) * kSecond / 4);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, BackgroundUpdatingScenes,
                         testing::Values(cv::Size(1, 1), cv::Size(1, 9), cv::Size(9, 1), cv::Size(2, 3),
                                         cv::Size(17, 13), cv::Size(101, 67), cv::Size(160, 120)));

TEST(BackgroundUpdating, EqualsThePlainStepsForAnyClock) {
    const uint64_t huge = std::numeric_limits<uint64_t>::max();
    const std::vector<std::vector<uint64_t>> clocks = {
        {0, 0, 0, kSecond},                                        // begins at 0 again and again
        {0, 3 * kSecond, 4 * kSecond, 9 * kSecond},                // the second frame is as the first
        {kSecond, kSecond, kSecond, kSecond + 1},                  // equal
        {9 * kSecond, 7 * kSecond, 8 * kSecond, 1, 20 * kSecond},  // backward
        {huge, 1, huge, huge - kSecond},                           // around the end of the clock
        {kSecond, 2 * kSecond, 4 * kSecond, 8 * kSecond, 9 * kSecond, 3 * kSecond},
        {1, 2, 3, 4, 5},
    };
    const Settings all[] = {{},
                            {0.5F, 100, 10.0F, 0.0F},
                            {0.2F, 3, 0.0F, 5.0F},
                            {0.7F, 100, 0.0F, 0.0F},
                            {0.5F, 100, kNan, 5.0F},
                            {0.5F, 100, 10.0F, kNan},
                            {1.0F, 100, -4.0F, 2.0F}};
    for (std::size_t s = 0; s < std::size(all); ++s) {
        for (std::size_t c = 0; c < clocks.size(); ++c) {
            Model model(all[s]);
            Reference reference(all[s]);
            for (std::size_t i = 0; i < clocks[c].size(); ++i) {
                SCOPED_TRACE(testing::Message() << "settings " << s << ", clock " << c << ", frame " << i);
                ExpectSame(model, reference, MovingSquare(24, 18, static_cast<int>(i)), clocks[c][i]);
            }
        }
    }
}

TEST(BackgroundUpdating, BeginsAnewWithAFrameOfAnotherSize) {
    const Settings settings{0.5F, 50, 4.0F, 2.0F};
    Model model(settings);
    Reference reference(settings);
    const cv::Size sizes[] = {{40, 30}, {40, 30}, {40, 30}, {30, 40}, {30, 40}, {41, 30}, {40, 30}};
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        SCOPED_TRACE(testing::Message() << "frame " << i);
        ExpectSame(model, reference, MovingSquare(sizes[i].width, sizes[i].height, static_cast<int>(i)),
                   kSecond * (i + 1));
    }
}

TEST(BackgroundUpdating, ForgetsItsProgressWithAFrameOfAnotherSize) {
    Model model({0.5F, 50, 4.0F, 2.0F});  // learns for 2 seconds
    const cv::Mat small = RandomFrame(16, 16, 1);
    EXPECT_EQ(model.Update(small, kSecond), Accumulating);
    EXPECT_EQ(model.Update(small, 3 * kSecond), Ready);
    EXPECT_EQ(model.Update(RandomFrame(16, 17, 1), 4 * kSecond), Accumulating);
}

TEST(BackgroundUpdating, IsReadyOnceWholeSecondsReachTheLearningPeriod) {
    Model model({0.5F, 50, 10.0F, 5.0F});  // learns for 2 seconds
    const cv::Mat frame = RandomFrame(16, 16, 1);
    EXPECT_EQ(model.Update(frame, kSecond), Accumulating);
    EXPECT_EQ(model.Update(frame, 2 * kSecond), Accumulating);
    EXPECT_EQ(model.Update(frame, 3 * kSecond - 1), Accumulating);
    EXPECT_EQ(model.Update(frame, 3 * kSecond), Ready);
    EXPECT_EQ(model.Update(frame, 3 * kSecond), Ready);
}

TEST(BackgroundUpdating, LearnsForTheAdaptationTimeWithoutASpeedup) {
    Model model({0.5F, 50, 3.0F, 0.0F});
    const cv::Mat frame = RandomFrame(16, 16, 1);
    EXPECT_EQ(model.Update(frame, kSecond), Accumulating);
    EXPECT_EQ(model.Update(frame, 3 * kSecond), Accumulating);
    EXPECT_EQ(model.Update(frame, 4 * kSecond), Ready);
}

TEST(BackgroundUpdating, IsReadyAtOnceWithoutAnAdaptationTime) {
    Model model({0.5F, 50, 0.0F, 5.0F});
    EXPECT_EQ(model.Update(RandomFrame(16, 16, 1), kSecond), Ready);
}

TEST(BackgroundUpdating, IsReadyAtOnceWhenThePeriodIsNotANumber) {
    const cv::Mat frame = RandomFrame(16, 16, 1);
    EXPECT_EQ(Model({0.5F, 50, kNan, 5.0F}).Update(frame, kSecond), Ready);
    EXPECT_EQ(Model({0.5F, 50, 10.0F, kNan}).Update(frame, kSecond), Ready);
}

TEST(BackgroundUpdating, AFirstFrameAtZeroIsFollowedByAnotherFirstFrame) {
    Model model({0.5F, 50, 2.0F, 0.0F});
    const cv::Mat frame = RandomFrame(16, 16, 1);
    EXPECT_EQ(model.Update(frame, 0), Accumulating);
    EXPECT_EQ(model.Update(frame, 100 * kSecond), Accumulating) << "adds nothing to the time that was taken in";
    EXPECT_EQ(model.Update(frame, 102 * kSecond), Ready);
}

TEST(BackgroundUpdating, TheFirstFrameReplacesTheModel) {
    Model model;
    const cv::Mat frame = RandomFrame(32, 24, 5);
    model.Update(frame, 1000 * kSecond);
    const BackgroundResult result = model.Result();
    EXPECT_TRUE(SameBytes(result.BackgroundImage->data, frame));
    EXPECT_TRUE(SameBytes(result.ForegroundMask, cv::Mat::zeros(24, 32, CV_8U)));
}

TEST(BackgroundUpdating, TimeThatRunsBackwardsBelowZeroIsHuge) {
    Model model({0.5F, 50, 100.0F, 0.0F});
    const cv::Mat frame = RandomFrame(16, 16, 1);
    EXPECT_EQ(model.Update(frame, 50 * kSecond), Accumulating);
    EXPECT_EQ(model.Update(frame, 52 * kSecond), Accumulating);
    EXPECT_EQ(model.Update(frame, 51 * kSecond), Accumulating) << "one second is left of two";
    EXPECT_EQ(model.Update(frame, 49 * kSecond), Ready) << "one second below zero, modulo 2^64";
}

TEST(BackgroundUpdating, AGreyDifferenceOfTheThresholdIsBackground) {
    struct Case {
        float sensitivity;
        int threshold;
    };
    for (const Case& c : {Case{0.0F, 60}, Case{0.5F, 50}, Case{1.0F, 40}}) {
        Model model({c.sensitivity, 50, 10.0F, 5.0F});
        cv::Mat frame(4, 4, CV_8UC3, cv::Scalar::all(100));
        model.Update(frame, kSecond);
        frame.at<cv::Vec3b>(1, 2) = cv::Vec3b::all(static_cast<uint8_t>(100 + c.threshold));
        frame.at<cv::Vec3b>(2, 2) = cv::Vec3b::all(static_cast<uint8_t>(100 + c.threshold + 1));
        frame.at<cv::Vec3b>(3, 2) = cv::Vec3b::all(static_cast<uint8_t>(100 - c.threshold - 1));
        model.Update(frame, kSecond);  // no time has passed: the model stays
        cv::Mat expected = cv::Mat::zeros(4, 4, CV_8U);
        expected.at<uint8_t>(2, 2) = 255;
        expected.at<uint8_t>(3, 2) = 255;
        EXPECT_TRUE(SameBytes(model.Result().ForegroundMask, expected)) << "sensitivity " << c.sensitivity;
    }
}

TEST(BackgroundUpdating, EverythingIsForegroundBelowAThresholdOfZero) {
    Model model({3.5F, 50, 10.0F, 5.0F});
    model.Update(RandomFrame(8, 8, 2), kSecond);
    EXPECT_TRUE(SameBytes(model.Result().ForegroundMask, cv::Mat(8, 8, CV_8U, cv::Scalar(255))));
}

TEST(BackgroundUpdating, ReadsTheHostsFrameAgainForTheResult) {
    Model model;
    model.Update(cv::Mat(4, 4, CV_8UC3, cv::Scalar::all(10)), kSecond);
    EXPECT_EQ(model.Result().ForegroundMask[5], 0);
    model.frame.at<cv::Vec3b>(1, 1) = cv::Vec3b::all(200);
    EXPECT_EQ(model.Result().ForegroundMask[5], 255);
}

TEST(BackgroundUpdating, LeavesThePixelsOfTheReservedImageAsAllocated) {
    Model model;
    for (int step = 0; step < 3; ++step) {
        model.Update(MovingSquare(20, 10, step), kSecond * static_cast<uint64_t>(step + 1));
        EXPECT_EQ(CountFresh(model.Result().ReservedImage->data, 20 * 10 * 3), 20 * 10 * 3) << "step " << step;
    }
}

TEST(BackgroundUpdating, AFrameWithoutPixelsIsRefusedAndChangesNothing) {
    const Settings settings;
    Model model(settings);
    Reference reference(settings);
    const cv::Mat frame = MovingSquare(20, 10, 0);
    ExpectSame(model, reference, frame, kSecond);
    EXPECT_THROW(model.UpdateImage({nullptr, 20, 10, 60, 5 * kSecond}), cv::Exception);
    ExpectSameResult(model, reference, kSecond);
    ExpectSame(model, reference, MovingSquare(20, 10, 1), 2 * kSecond);
}

TEST(BackgroundUpdating, GivesNoResultAfterAFirstFrameWithoutPixels) {
    Model model;
    EXPECT_THROW(model.UpdateImage({nullptr, 20, 10, 60, kSecond}), cv::Exception);
    EXPECT_THROW(model.Result(), std::logic_error);
}

TEST(BackgroundUpdating, GivesNoResultAfterAFrameOfAnotherSizeWithoutPixels) {
    const Settings settings;
    Model model(settings);
    Reference reference(settings);
    model.Update(MovingSquare(20, 10, 0), kSecond);
    EXPECT_THROW(model.UpdateImage({nullptr, 10, 20, 30, 2 * kSecond}), cv::Exception);
    EXPECT_THROW(model.Result(), std::logic_error);
    ExpectSame(model, reference, MovingSquare(10, 20, 1), 3 * kSecond);
}

TEST(BackgroundUpdating, HasNoStateAfterAFrameOfAnotherSizeWithoutPixels) {
    Model model({0.5F, 50, 0.0F, 5.0F});
    ASSERT_EQ(model.Update(MovingSquare(20, 10, 0), kSecond), Ready);
    EXPECT_THROW(model.UpdateImage({nullptr, 10, 20, 30, 2 * kSecond}), cv::Exception);
    auto* const handle = static_cast<InvokableUpdater*>(static_cast<Invokable*>(model.handle));
    EXPECT_EQ(handle->GetUpdater()->GetState(), NoResult);
}

TEST(BackgroundUpdating, BeginsAnewAfterAFrameThatCannotBeAllocated) {
    const Settings settings;
    Model model(settings);
    Reference reference(settings);
    uint8_t pixel[3] = {};
    model.Update(MovingSquare(20, 10, 0), kSecond);
    EXPECT_THROW(model.UpdateImage({pixel, -20, 10, 0, kSecond}), std::bad_alloc);
    EXPECT_THROW(model.Result(), std::logic_error);
    EXPECT_THROW(model.UpdateImage({pixel, -20, 10, 0, kSecond}), std::bad_alloc) << "not taken for an updated model";
    ExpectSame(model, reference, MovingSquare(20, 10, 1), 2 * kSecond);
}

TEST(BackgroundUpdating, KeepsNoBuffersOfAModelThatCouldNotBegin) {
    Model model;
    uint8_t pixel[3] = {};
    EXPECT_THROW(model.UpdateImage({pixel, -20, 10, 0, kSecond}), std::bad_alloc) << "before there are any";
    const cv::Mat frame = MovingSquare(20, 10, 0);
    const std::size_t before = LiveBlocks();
    {
        const FailingMatrix failure(0);
        EXPECT_THROW(model.UpdateImage(ImageOf(frame, kSecond)), cv::Exception) << "behind them";
    }
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(BackgroundUpdating, AFrameWhoseBuffersWrapToANegativeSizeFailsAsAnAllocation) {
    Model model;
    uint8_t pixel[3] = {};
    EXPECT_THROW(model.UpdateImage({pixel, 32768, 32768, 0, kSecond}), std::bad_alloc);
}

TEST(BackgroundUpdating, RefusesAFrameWhoseBuffersWouldWrapToASmallSize) {
    Model model;
    const cv::Mat frame = MovingSquare(20, 10, 0);
    model.Update(frame, kSecond);
    uint8_t pixel[3] = {};
    try {
        model.UpdateImage({pixel, 65536, 65536, 0, 2 * kSecond});
        FAIL() << "no exception";
    } catch (const std::invalid_argument& refusal) {
        EXPECT_STREQ(refusal.what(),
                     "BackgroundData.Image: height 65536 x stride 196608; at most 2147483647 is allowed");
    }
    EXPECT_TRUE(SameBytes(model.Result().BackgroundImage->data, frame)) << "the model is as it was";
}

TEST(BackgroundUpdating, RefusesSizesThatAreEmptyOrNegative) {
    uint8_t pixel[3] = {};
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0), cv::Size(-3, -2), cv::Size(5, -1)}) {
        Model model;
        EXPECT_ANY_THROW({
            model.UpdateImage({pixel, size.width, size.height, 0, kSecond});
            model.Result();
        }) << size;
    }
}

TEST(BackgroundUpdating, RateFollowsTheTimeConstant) {
    EXPECT_EQ(BackgroundUpdatingSystem::CalcCurrentRate(1.0F, 0.0F), 1.0F);
    EXPECT_EQ(BackgroundUpdatingSystem::CalcCurrentRate(0.0F, 3.0F), 0.0F);
    EXPECT_TRUE(std::isnan(BackgroundUpdatingSystem::CalcCurrentRate(0.0F, 0.0F)));
    EXPECT_TRUE(std::isnan(BackgroundUpdatingSystem::CalcCurrentRate(1.0F, kNan)));
    // After one period, 2.15 time constants have passed.
    EXPECT_FLOAT_EQ(BackgroundUpdatingSystem::CalcCurrentRate(7.0F, 7.0F), 1.0F - std::exp(-2.15F));
    cv::RNG random(11);
    for (int i = 0; i < 1000; ++i) {
        const float elapsed = random.uniform(0.0F, 5.0F);
        const float period = random.uniform(0.01F, 60.0F);
        const auto tau = static_cast<float>(static_cast<double>(period) / 2.15);
        ASSERT_EQ(BackgroundUpdatingSystem::CalcCurrentRate(elapsed, period), 1.0F - expf(-elapsed / tau))
            << elapsed << " s, " << period << " s";
    }
}

}  // namespace
