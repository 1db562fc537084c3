#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <thread>
#include <vector>

#include "interface/BackgroundModel.h"
#include "interface/Library.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace {

using quarry::test::BackgroundInput;
using quarry::test::BackgroundView;
using quarry::test::CreateBackgroundModel;
using quarry::test::Feed;
using quarry::test::Framed;
using quarry::test::FramedInput;
using quarry::test::FramedOptions;
using quarry::test::FramedResult;
using quarry::test::ImageOf;
using quarry::test::kTicksPerSecond;
using quarry::test::Library;
using quarry::test::MovingSquare;
using quarry::test::RandomFrame;
using quarry::test::TwoSecondsToLearn;

class Handles : public testing::Test {
protected:
    void* CreateSharpness() const {
        auto options = FramedOptions<ProcessOptions>();
        void* handle = nullptr;
        library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")(&handle, options.record());
        return handle;
    }

    float SharpnessOf(void* handle, const cv::Mat& frame) const {
        auto input = FramedInput<VoLInputData>();
        input->Image = ImageOf(frame);
        auto result = FramedResult<VoLOutputData>();
        library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        library.DisposeResult(handle, result.as<ProcessResult>());
        return result->Variance;
    }

    /// What a host sees of a moving square, frame by frame, half a second apart.
    std::vector<BackgroundView> Watch(void* handle, int frames, int width) const {
        std::vector<BackgroundView> views;
        for (int i = 0; i < frames; ++i) {
            const cv::Mat frame = MovingSquare(width, 24, i);
            views.push_back(Feed(library, handle, frame, kTicksPerSecond * static_cast<uint64_t>(i + 2) / 2));
        }
        return views;
    }

    Library library;
};

// ---- life

TEST_F(Handles, OfAProcessorLiveFromFactoryToDispose) {
    void* const handle = CreateSharpness();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(SharpnessOf(handle, cv::Mat(12, 16, CV_8UC3, cv::Scalar(10, 200, 30))), 0.0F);
    EXPECT_GT(SharpnessOf(handle, RandomFrame(16, 12, 1)), 100.0F);
    library.Dispose(handle);
}

TEST_F(Handles, OfAnUpdaterLiveFromFactoryToDispose) {
    void* const handle = CreateBackgroundModel(library);
    ASSERT_NE(handle, nullptr);
    const cv::Mat frame = MovingSquare(32, 24, 0);
    const BackgroundView view = Feed(library, handle, frame, kTicksPerSecond);
    EXPECT_EQ(view.timestamp, kTicksPerSecond);
    EXPECT_EQ(std::count(view.mask.begin(), view.mask.end(), 0), 32 * 24) << "the first frame is the background";
    library.Dispose(handle);
}

TEST_F(Handles, CanEndUnused) {
    library.Dispose(CreateSharpness());
    library.Dispose(CreateBackgroundModel(library));
}

TEST_F(Handles, CanBeNullWhenTheyEnd) {
    EXPECT_NO_THROW(library.Dispose(nullptr));
}

TEST_F(Handles, GiveTheSameAnswerEveryTime) {
    void* const handle = CreateSharpness();
    const cv::Mat frame = RandomFrame(40, 30, 2);
    const float first = SharpnessOf(handle, frame);
    SharpnessOf(handle, RandomFrame(8, 8, 3));
    EXPECT_EQ(SharpnessOf(handle, frame), first);
    library.Dispose(handle);
}

TEST_F(Handles, ReturnTheStateSetDuringThatVeryUpdate) {
    void* const handle = CreateBackgroundModel(library);
    std::vector<int32_t> states;
    for (const BackgroundView& view : Watch(handle, 7, 32)) states.push_back(view.state);
    // Two seconds of frames are behind the model with the fifth.
    EXPECT_EQ(states, (std::vector<int32_t>{1, 1, 1, 1, 2, 2, 2}));
    library.Dispose(handle);
}

TEST_F(Handles, ShowAMaskOfZeroAnd255) {
    void* const handle = CreateBackgroundModel(library);
    const std::vector<BackgroundView> views = Watch(handle, 3, 32);
    const auto foreground = std::count(views[2].mask.begin(), views[2].mask.end(), 255);
    const auto background = std::count(views[2].mask.begin(), views[2].mask.end(), 0);
    EXPECT_GT(foreground, 0);
    EXPECT_EQ(foreground + background, 32 * 24);
    library.Dispose(handle);
}

TEST_F(Handles, NeedNoOptionsAfterTheFactory) {
    auto options = std::make_unique<Framed<BackgroundOptions>>(TwoSecondsToLearn());
    void* handle = nullptr;
    library.Factory<BackgroundOptions>("CreateCVBackgroundModel")(&handle, options->record());
    std::memset(options->record(), 0xFF, sizeof(BackgroundOptions));
    options.reset();
    void* const reference = CreateBackgroundModel(library);
    EXPECT_EQ(Watch(handle, 6, 32), Watch(reference, 6, 32));
    library.Dispose(handle);
    library.Dispose(reference);
}

TEST_F(Handles, KeepAResultsBuffersUntilTheNextUpdate) {
    void* const handle = CreateBackgroundModel(library);
    const cv::Mat frame = MovingSquare(32, 24, 0);
    auto input = BackgroundInput(frame, kTicksPerSecond);
    library.Update(handle, input.as<UpdateData>());
    auto first = FramedResult<BackgroundResult>();
    auto second = FramedResult<BackgroundResult>();
    library.GetUpdateResult(handle, first.as<UpdateResult>());
    library.GetUpdateResult(handle, second.as<UpdateResult>());
    EXPECT_EQ(first->ForegroundMask, second->ForegroundMask);
    EXPECT_EQ(first->BackgroundImage, second->BackgroundImage);
    EXPECT_EQ(first->ReservedImage, second->ReservedImage);
    library.Dispose(handle);
}

// ---- two handles

TEST_F(Handles, AreDistinct) {
    void* const one = CreateSharpness();
    void* const other = CreateSharpness();
    EXPECT_NE(one, other);
    library.Dispose(one);
    library.Dispose(other);
}

TEST_F(Handles, OfUpdatersShareNothing) {
    void* const alone = CreateBackgroundModel(library);
    const std::vector<BackgroundView> expected = Watch(alone, 8, 32);
    library.Dispose(alone);

    void* const one = CreateBackgroundModel(library);
    void* const other = CreateBackgroundModel(library);
    std::vector<BackgroundView> interleaved;
    for (int i = 0; i < 8; ++i) {
        const cv::Mat frame = MovingSquare(32, 24, i);
        interleaved.push_back(Feed(library, one, frame, kTicksPerSecond * static_cast<uint64_t>(i + 2) / 2));
        Feed(library, other, RandomFrame(20, 10, static_cast<uint64_t>(i)), 77 * static_cast<uint64_t>(i));
    }
    EXPECT_EQ(interleaved, expected);
    library.Dispose(one);
    library.Dispose(other);
}

TEST_F(Handles, OutliveOthersOfTheirKind) {
    void* const one = CreateBackgroundModel(library);
    void* const other = CreateBackgroundModel(library);
    const cv::Mat frame = MovingSquare(32, 24, 0);
    const BackgroundView view = Feed(library, one, frame, kTicksPerSecond);
    Feed(library, other, frame, kTicksPerSecond);
    library.Dispose(other);
    EXPECT_EQ(quarry::test::ViewOf(library, one, view.state), view);
    library.Dispose(one);
}

TEST_F(Handles, OfUpdatersWorkInTwoThreadsAtOnce) {
    constexpr int kFrames = 40;
    void* const serial = CreateBackgroundModel(library);
    const std::vector<BackgroundView> narrow = Watch(serial, kFrames, 32);
    const std::vector<BackgroundView> wide = Watch(serial, kFrames, 48);
    library.Dispose(serial);

    void* const one = CreateBackgroundModel(library);
    void* const other = CreateBackgroundModel(library);
    std::vector<BackgroundView> narrowInThread;
    std::vector<BackgroundView> wideInThread;
    std::thread first([&] { narrowInThread = Watch(one, kFrames, 32); });
    std::thread second([&] { wideInThread = Watch(other, kFrames, 48); });
    first.join();
    second.join();
    EXPECT_EQ(narrowInThread, narrow);
    EXPECT_EQ(wideInThread, wide);
    library.Dispose(one);
    library.Dispose(other);
}

TEST_F(Handles, OfProcessorsWorkInTwoThreadsAtOnce) {
    const auto measure = [this](void* handle, std::vector<float>& values) {
        for (uint64_t seed = 0; seed < 50; ++seed) values.push_back(SharpnessOf(handle, RandomFrame(64, 48, seed)));
    };
    void* const one = CreateSharpness();
    void* const other = CreateSharpness();
    std::vector<float> serial;
    measure(one, serial);
    std::vector<float> inFirst;
    std::vector<float> inSecond;
    std::thread first([&] { measure(one, inFirst); });
    std::thread second([&] { measure(other, inSecond); });
    first.join();
    second.join();
    EXPECT_EQ(inFirst, serial);
    EXPECT_EQ(inSecond, serial);
    library.Dispose(one);
    library.Dispose(other);
}

TEST_F(Handles, AreCreatedAndDisposedOfInTwoThreadsAtOnce) {
    const cv::Mat frame = RandomFrame(16, 12, 4);
    void* const reference = CreateSharpness();
    const float expected = SharpnessOf(reference, frame);
    library.Dispose(reference);
    std::vector<int> right(2, 0);
    std::vector<std::thread> threads;
    threads.reserve(right.size());
    for (int& rightInThread : right) {
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                void* const handle = CreateSharpness();
                rightInThread += SharpnessOf(handle, frame) == expected ? 1 : 0;
                library.Dispose(handle);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, (std::vector<int>{100, 100}));
}

// ---- failures

class HandleFailures : public Handles {
protected:
    void SetUp() override {
        processor = CreateSharpness();
        updater = CreateBackgroundModel(library);
        input->Image = ImageOf(frame);
        data->Image = ImageOf(frame, kTicksPerSecond);
    }
    void TearDown() override {
        library.Dispose(processor);
        library.Dispose(updater);
    }

    const cv::Mat frame = RandomFrame(16, 12, 4);
    void* processor = nullptr;
    void* updater = nullptr;
    Framed<VoLInputData> input = FramedInput<VoLInputData>();
    Framed<VoLOutputData> output = FramedResult<VoLOutputData>(0x66);
    Framed<BackgroundData> data = FramedInput<BackgroundData>();
    Framed<BackgroundResult> view = FramedResult<BackgroundResult>(0x66);
};

TEST_F(HandleFailures, AreInvalidArgumentForANullHandle) {
    EXPECT_THROW(library.Process(nullptr, input.as<ProcessData>(), output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_THROW(library.DisposeResult(nullptr, output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_THROW(library.Update(nullptr, data.as<UpdateData>()), std::invalid_argument);
    EXPECT_THROW(library.GetUpdateResult(nullptr, view.as<UpdateResult>()), std::invalid_argument);
}

TEST_F(HandleFailures, AreInvalidArgumentForAProcessorThatShallUpdate) {
    EXPECT_THROW(library.Update(processor, data.as<UpdateData>()), std::invalid_argument);
    EXPECT_THROW(library.GetUpdateResult(processor, view.as<UpdateResult>()), std::invalid_argument);
}

TEST_F(HandleFailures, AreInvalidArgumentForAnUpdaterThatShallProcess) {
    EXPECT_THROW(library.Process(updater, input.as<ProcessData>(), output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_THROW(library.DisposeResult(updater, output.as<ProcessResult>()), std::invalid_argument);
}

TEST_F(HandleFailures, AreOfTheHandleBeforeTheyAreOfTheRecord) {
    input.SetTag(0);
    data.SetTag(0);
    EXPECT_THROW(library.Process(updater, input.as<ProcessData>(), output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_THROW(library.Update(processor, data.as<UpdateData>()), std::invalid_argument);
}

TEST_F(HandleFailures, LeaveTheRecordsOfAWrongHandleUntouched) {
    const auto outputBefore = output.Bytes();
    const auto viewBefore = view.Bytes();
    EXPECT_THROW(library.Process(updater, input.as<ProcessData>(), output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_THROW(library.GetUpdateResult(processor, view.as<UpdateResult>()), std::invalid_argument);
    EXPECT_EQ(output.Bytes(), outputBefore);
    EXPECT_EQ(view.Bytes(), viewBefore);
}

TEST_F(HandleFailures, AreInvalidArgumentForNullRecords) {
    EXPECT_THROW(library.Process(processor, nullptr, output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_THROW(library.Process(processor, input.as<ProcessData>(), nullptr), std::invalid_argument);
    EXPECT_THROW(library.DisposeResult(processor, nullptr), std::invalid_argument);
    EXPECT_THROW(library.Update(updater, nullptr), std::invalid_argument);
    EXPECT_THROW(library.GetUpdateResult(updater, nullptr), std::invalid_argument);
}

TEST_F(HandleFailures, LeaveTheResultUntouchedForANullInput) {
    const auto before = output.Bytes();
    EXPECT_THROW(library.Process(processor, nullptr, output.as<ProcessResult>()), std::invalid_argument);
    EXPECT_EQ(output.Bytes(), before);
}

TEST_F(HandleFailures, AreInvalidArgumentForNullOptions) {
    void* const untouched = reinterpret_cast<void*>(0x5EED);
    void* handle = untouched;
    EXPECT_THROW(library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")(&handle, nullptr),
                 std::invalid_argument);
    EXPECT_THROW(library.Factory<BackgroundOptions>("CreateCVBackgroundModel")(&handle, nullptr),
                 std::invalid_argument);
    EXPECT_EQ(handle, untouched);
}

TEST_F(HandleFailures, AreInvalidArgumentForANullAddressOfTheHandle) {
    auto options = FramedOptions<ProcessOptions>();
    auto backgroundOptions = TwoSecondsToLearn();
    EXPECT_THROW(library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")(nullptr, options.record()),
                 std::invalid_argument);
    EXPECT_THROW(library.Factory<BackgroundOptions>("CreateCVBackgroundModel")(nullptr, backgroundOptions.record()),
                 std::invalid_argument);
}

TEST_F(HandleFailures, AreLogicErrorForAResultBeforeTheFirstFrame) {
    const auto before = view.Bytes();
    EXPECT_THROW(library.GetUpdateResult(updater, view.as<UpdateResult>()), std::logic_error);
    EXPECT_EQ(view.Bytes(), before);
}

TEST_F(HandleFailures, LeaveAnUpdaterReadyForItsFirstFrame) {
    EXPECT_THROW(library.GetUpdateResult(updater, view.as<UpdateResult>()), std::logic_error);
    EXPECT_EQ(library.Update(updater, data.as<UpdateData>()), Accumulating);
}

TEST_F(HandleFailures, OfOpenCVReachTheHost) {
    input->Image.data = nullptr;
    EXPECT_THROW(library.Process(processor, input.as<ProcessData>(), output.as<ProcessResult>()), cv::Exception);
}

TEST_F(HandleFailures, OfOpenCVLeaveTheResultUntouched) {
    input->Image.data = nullptr;
    const auto before = output.Bytes();
    EXPECT_THROW(library.Process(processor, input.as<ProcessData>(), output.as<ProcessResult>()), cv::Exception);
    EXPECT_EQ(output.Bytes(), before);
}

TEST_F(HandleFailures, OfOpenCVLeaveTheProcessorUsable) {
    const float expected = SharpnessOf(processor, frame);
    input->Image.data = nullptr;
    EXPECT_THROW(library.Process(processor, input.as<ProcessData>(), output.as<ProcessResult>()), cv::Exception);
    EXPECT_EQ(SharpnessOf(processor, frame), expected);
}

}  // namespace
