// Each updater of the host side gives what the library's own functions give, frame by frame, and keeps nothing.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <opencv2/core.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

#include "Quarry/Host.hpp"
#include "support/KeepsNothing.h"
#include "support/RawCalls.h"
#include "support/Scenes.h"

namespace quarry::test {
namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr uint64_t kTicksPerFrame = 4'000'000;

uint64_t TimeOf(int step) {
    return static_cast<uint64_t>(step + 1) * kTicksPerFrame;
}

ImageView View(const cv::Mat& frame, uint64_t timestamp = 0) {
    return {frame.data, frame.cols, frame.rows, timestamp};
}

TEST(HostHeaderUpdaters, BackgroundModel) {
    BackgroundModel::Options options;
    options.sensitivity = 0.8F;
    options.adaptationSeconds = 4;
    options.learningSpeedup = 2;
    BackgroundModel model(options);
    const RawHandle raw = RawCreate(CreateCVBackgroundModel, BackgroundOptions{0, 0.8F, 500, 4, 2});
    bool wasReady = false;
    for (int step = 0; step < 12; ++step) {
        const cv::Mat frame = MovingSquare(kWidth, kHeight, step);
        int32_t state = -1;
        const auto expected =
            RawUpdate<BackgroundResult>(raw, BackgroundData{0, ImageOf(frame, TimeOf(step)), 0}, state);
        ASSERT_EQ(model.Update(View(frame, TimeOf(step))), state) << "step " << step;
        wasReady = wasReady || state == Ready;

        const BackgroundPictures pictures = model.Result();
        const MaskView foreground = pictures.foreground();
        const ImageView background = pictures.background();
        ASSERT_EQ(foreground.width(), kWidth);
        ASSERT_EQ(background.height(), kHeight);
        EXPECT_EQ(background.timestamp(), TimeOf(step));
        ASSERT_EQ(std::memcmp(foreground.data(), expected.ForegroundMask, foreground.elements().size()), 0) << step;
        ASSERT_EQ(std::memcmp(background.data(), expected.BackgroundImage->data, background.elements().size()), 0)
            << "step " << step;
    }
    EXPECT_TRUE(wasReady);
}

TEST(HostHeaderUpdaters, BackgroundModelReadsAFrameOnlyWhileItIsTakenIn) {
    BackgroundModel model;
    cv::Mat frame = MovingSquare(kWidth, kHeight, 0);
    model.Update(View(frame, 1));
    frame.setTo(cv::Scalar::all(0));
    const MaskView foreground = model.Result().foreground();
    for (const uint8_t pixel : foreground.elements()) ASSERT_EQ(pixel, 0);  // the first frame is the background
}

TEST(HostHeaderUpdaters, BackgroundModelHasNoResultBeforeAFrameAndAfterAFailure) {
    BackgroundModel model;
    EXPECT_THROW(model.Result(), std::logic_error);
    model.Update(View(MovingSquare(kWidth, kHeight, 0), 1));
    EXPECT_NO_THROW(model.Result());
    EXPECT_ANY_THROW(model.Update(ImageView(nullptr, 0, 0, 2)));
    EXPECT_THROW(model.Result(), std::logic_error);
}

TEST(HostHeaderUpdaters, BackgroundModelBeginsAnewWithAnotherSize) {
    BackgroundModel model;
    model.Update(View(MovingSquare(kWidth, kHeight, 0), 100));
    EXPECT_EQ(model.Update(View(MovingSquare(32, 20, 0), 50)), Accumulating);
    EXPECT_EQ(model.Result().foreground().width(), 32);
}

TEST(HostHeaderUpdaters, DenseOpticalFlow) {
    DenseOpticalFlow::Options options;
    options.detail = 0.4F;
    options.quality = 0.2F;
    for (const bool isDefault : {false, true}) {
        DenseOpticalFlow flow = isDefault ? DenseOpticalFlow() : DenseOpticalFlow(options);
        const RawHandle raw = RawCreate(CreateCVDenseOpticalFlowCalculator,
                                        isDefault ? OFCOptions{0, -1, 0, -1} : OFCOptions{0, 0.4F, 0, 0.2F});
        for (int step = 0; step < 3; ++step) {
            const cv::Mat frame = MovingSquare(kWidth, kHeight, step);
            int32_t state = -1;
            const auto expected = RawUpdate<OFCResult>(raw, OFCData{0, ImageOf(frame)}, state);
            ASSERT_EQ(flow.Update(View(frame)), state) << "step " << step;
            const FlowResult result = flow.Result();
            ASSERT_EQ(result.width(), kWidth);
            ASSERT_EQ(result.height(), kHeight);
            ASSERT_EQ(std::memcmp(result.data(), expected.FlowMatrix->data,
                                  result.view().elements().size() * sizeof(AbsVector)),
                      0)
                << "step " << step;
        }
    }
}

TEST(HostHeaderUpdaters, DenseOpticalFlowIsTheFieldOfALine) {
    DenseOpticalFlow flow;
    flow.Update(View(MovingSquare(kWidth, kHeight, 0)));
    flow.Update(View(MovingSquare(kWidth, kHeight, 1)));
    OpticalFlowLine across;
    EXPECT_EQ(across(flow.Result(), {{0.3F, 0.2F}, {0.3F, 0.8F}}, 9).size(), 9U);
    EXPECT_THROW(DenseOpticalFlow().Result(), std::logic_error);
}

TEST(HostHeaderUpdaters, MosseTracker) {
    MosseTracker::Options options;
    options.mode = TrackerMode::Eager;
    MosseTracker tracker(options);
    const RawHandle raw = RawCreate(CreateCVMosseTracker, MosseTrackerOptions{0, {}, 1});
    for (int step = 0; step < 8; ++step) {
        const cv::Mat frame = MovingSquare(kWidth, kHeight, step);
        int32_t state = -1;
        const auto expected =
            RawUpdate<MosseTrackerResult>(raw, MosseTrackerData{0, ImageOf(frame), {0, 18, 16, 16}}, state);
        const bool found = step == 0 ? tracker.Start(View(frame), {0, 18, 16, 16}) : tracker.Update(View(frame));
        const Track track = tracker.Result();
        EXPECT_EQ(found, expected.Found == 1) << "step " << step;
        EXPECT_EQ(track.found, found);
        EXPECT_EQ(track.target.x, expected.TargetRect.X) << "step " << step;
        EXPECT_EQ(track.target.y, expected.TargetRect.Y) << "step " << step;
        EXPECT_EQ(track.target.width, expected.TargetRect.Width);
        EXPECT_EQ(track.target.height, expected.TargetRect.Height);
    }
    EXPECT_GT(tracker.Result().target.x, 10);
}

TEST(HostHeaderUpdaters, MosseTrackerIsStartedOnceAndFirst) {
    const cv::Mat frame = MovingSquare(kWidth, kHeight, 0);
    MosseTracker tracker;
    EXPECT_THROW(tracker.Update(View(frame)), std::logic_error);
    EXPECT_THROW(tracker.Result(), std::logic_error);
    EXPECT_ANY_THROW(tracker.Start(View(frame), {0, 18, 0, 0}));
    tracker.Start(View(frame), {0, 18, 16, 16});
    EXPECT_THROW(tracker.Start(View(frame), {0, 18, 16, 16}), std::logic_error);
}

TEST(HostHeaderUpdaters, ResultsKeepTheirUpdaterAlive) {
    std::optional<DenseOpticalFlow> flow(std::in_place);
    std::optional<BackgroundModel> model(std::in_place);
    const cv::Mat frame = MovingSquare(kWidth, kHeight, 0);
    flow->Update(View(frame));
    model->Update(View(frame, 1));
    const FlowResult field = flow->Result();
    const BackgroundPictures pictures = model->Result();
    flow.reset();
    model.reset();
    EXPECT_EQ(field.At(3, 3).Dx, 0);
    EXPECT_EQ(pictures.foreground().At(3, 3), 0);
}

TEST(HostHeaderUpdaters, KeepNothing) {
    const cv::Mat frame = MovingSquare(kWidth, kHeight, 0);
    EXPECT_TRUE(KeepsNothing([&] {
        BackgroundModel model;
        model.Update(View(frame, 1));
        const BackgroundPictures pictures = model.Result();
        DenseOpticalFlow flow;
        flow.Update(View(frame));
        DenseOpticalFlow moved = std::move(flow);
        moved.Update(View(frame));
        const FlowResult field = moved.Result();
        MosseTracker tracker;
        tracker.Start(View(frame), {0, 18, 16, 16});
    }));
}

}  // namespace
}  // namespace quarry::test
