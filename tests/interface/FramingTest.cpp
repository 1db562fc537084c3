#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <opencv2/core.hpp>
#include <stdexcept>

#include "interface/BackgroundModel.h"
#include "interface/Library.h"
#include "support/Framed.h"
#include "support/Scenes.h"
#include "support/WrongFrames.h"

namespace {

using quarry::test::Apply;
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
using quarry::test::ViewOf;
using quarry::test::WrongFrame;
using quarry::test::WrongFrames;

void* const kUntouched = reinterpret_cast<void*>(0x5EED);

/// A call with a wrong frame throws MarshalingException with its one message.
template <class Call>
void ExpectMarshalingException(const WrongFrame& frame, Call call) {
    try {
        call();
        ADD_FAILURE() << frame << ": nothing was thrown";
    } catch (const MarshalingException& error) {
        EXPECT_STREQ(error.what(), "Analysis System data marshaling error") << frame;
    } catch (...) {
        ADD_FAILURE() << frame << ": another exception was thrown";
    }
}

class Framing : public testing::Test {
protected:
    Library library;
};

// ---- every operation

template <class OptionsRecord, class InputRecord, class ResultRecord>
struct Operation {
    using Options = OptionsRecord;
    using Input = InputRecord;
    using Result = ResultRecord;
};

struct ImageDifference : Operation<BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult> {
    static constexpr const char* kFactory = "CreateCVImageAbsSubtractor";
    static constexpr bool kUpdater = false;
};
struct Background : Operation<BackgroundOptions, BackgroundData, BackgroundResult> {
    static constexpr const char* kFactory = "CreateCVBackgroundModel";
    static constexpr bool kUpdater = true;
};
struct DenseFlow : Operation<OFCOptions, OFCData, OFCResult> {
    static constexpr const char* kFactory = "CreateCVDenseOpticalFlowCalculator";
    static constexpr bool kUpdater = true;
};
struct FlowLine : Operation<OFLineOptions, OFLineData, OFLineResult> {
    static constexpr const char* kFactory = "CreateCVOpticalFlowLineProcessor";
    static constexpr bool kUpdater = false;
};
struct Denoising : Operation<FilterOptions, FilterData, FilterResult> {
    static constexpr const char* kFactory = "CreateCVFastNlMeansDenoisingFilter";
    static constexpr bool kUpdater = false;
};
struct Sharpness : Operation<ProcessOptions, VoLInputData, VoLOutputData> {
    static constexpr const char* kFactory = "CreateCVLaplacianVarianceProcessor";
    static constexpr bool kUpdater = false;
};
struct FaceSharpness : Operation<ProcessOptions, FaceVoLInputData, VoLOutputData> {
    static constexpr const char* kFactory = "CreateCVFaceLaplacianVarianceProcessor";
    static constexpr bool kUpdater = false;
};
struct Tracker : Operation<MosseTrackerOptions, MosseTrackerData, MosseTrackerResult> {
    static constexpr const char* kFactory = "CreateCVMosseTracker";
    static constexpr bool kUpdater = true;
};
struct Similarity : Operation<ProcessOptions, EmbeddingData, CosineOutputData> {
    static constexpr const char* kFactory = "CreateCVCosineSimilarity";
    static constexpr bool kUpdater = false;
};
struct ObjectContour : Operation<ContourCalcingOptions, ContourCalcingInputData, ContourResult> {
    static constexpr const char* kFactory = "CreateCVContourCalculator";
    static constexpr bool kUpdater = false;
};
struct ColorComparison : Operation<ColorComparingOptions, ColorComparingInputData, ColorComparingOutputData> {
    static constexpr const char* kFactory = "CreateCVColorComparator";
    static constexpr bool kUpdater = false;
};
struct ShapeRate
    : Operation<ContourRateMeasuringOptions, ContourRateMeasuringInputData, ContourRateMeasuringOutputData> {
    static constexpr const char* kFactory = "CreateCVContourRateCalculator";
    static constexpr bool kUpdater = false;
};
struct People : Operation<ClassificationOptions, ClassificationData, ClassificationResult> {
    static constexpr const char* kFactory = "CreateCVHogSvmHumanClassifier";
    static constexpr bool kUpdater = false;
};
struct Cascade : Operation<ClassificationOptions, ClassificationData, ClassificationResult> {
    static constexpr const char* kFactory = "CreateCVCascadeClassifier";
    static constexpr bool kUpdater = false;
};
struct RotatedRect : Operation<RectExtractorOptions, RectExtractorData, RectExtractorResult> {
    static constexpr const char* kFactory = "CreateCVRectExtractor";
    static constexpr bool kUpdater = false;
};
struct ClothingColors : Operation<KMeanOptions, KMeanData, KMeanResult> {
    static constexpr const char* kFactory = "CreateCVKMeanColorExtractor";
    static constexpr bool kUpdater = false;
};
struct Clusters : Operation<ClustererOptions, ClustererData, ClustererResult> {
    static constexpr const char* kFactory = "CreateCVClustererContours";
    static constexpr bool kUpdater = false;
};
struct Intersection : Operation<ContourIntersectionProcessorOptions, ContourIntersectionProcessorData,
                                ContourInstersectionProcessorResult> {
    static constexpr const char* kFactory = "CreateCVContourIntersectionProcessor";
    static constexpr bool kUpdater = false;
};
struct Occupancy : Operation<ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult> {
    static constexpr const char* kFactory = "CreateCVContourMaskProcessor";
    static constexpr bool kUpdater = false;
};
struct Alignment : Operation<TransformOptions, AffineTransformData, TransformResult> {
    static constexpr const char* kFactory = "CreateCVAffineTransformProcessor";
    static constexpr bool kUpdater = false;
};
struct Rotation : Operation<TransformOptions, RotationTransformData, TransformResult> {
    static constexpr const char* kFactory = "CreateCVRotationTransformProcessor";
    static constexpr bool kUpdater = false;
};
struct Fire : Operation<ProcessOptions, FireInputData, FireOutputData> {
    static constexpr const char* kFactory = "CreateCVPixelwiseFireProcessor";
    static constexpr bool kUpdater = false;
};

/// Options of zeros will do, but for the path of a model, which must be there.
template <class Options>
void GiveWhatIsNeeded(Options& /*options*/) {}
void GiveWhatIsNeeded(ClassificationOptions& options) {
    options.CascadePath = "no-such-model.xml";
}

template <class Kind>
class FramingOfEveryOperation : public Framing {
protected:
    void SetUp() override {
        auto options = FramedOptions<typename Kind::Options>();
        GiveWhatIsNeeded(*options);
        create(&handle, options.record());
    }
    void TearDown() override { library.Dispose(handle); }

    /// Feeds the operation; the records behind the frames are zeros, which nothing may come to read.
    void Feed(Framed<typename Kind::Input>& input, Framed<typename Kind::Result>& result) const {
        if (Kind::kUpdater) {
            library.Update(handle, input.template as<UpdateData>());
        } else {
            library.Process(handle, input.template as<ProcessData>(), result.template as<ProcessResult>());
        }
    }

    /// Hands a result over: for an updater to fill, for a processor to take back.
    void HandOver(Framed<typename Kind::Result>& result) const {
        if (Kind::kUpdater) {
            library.GetUpdateResult(handle, result.template as<UpdateResult>());
        } else {
            library.DisposeResult(handle, result.template as<ProcessResult>());
        }
    }

    void (*create)(void**, typename Kind::Options*) = library.template Factory<typename Kind::Options>(Kind::kFactory);
    void* handle = nullptr;
};

using Operations =
    testing::Types<ImageDifference, Background, DenseFlow, FlowLine, Denoising, Sharpness, FaceSharpness, Tracker,
                   Similarity, ObjectContour, ColorComparison, ShapeRate, People, Cascade, RotatedRect, ClothingColors,
                   Clusters, Intersection, Occupancy, Alignment, Rotation, Fire>;
TYPED_TEST_SUITE(FramingOfEveryOperation, Operations, );

TYPED_TEST(FramingOfEveryOperation, IsCheckedForOptions) {
    using Options = typename TypeParam::Options;
    for (const WrongFrame& wrong : WrongFrames(sizeof(Options), QUARRY_OPTIONS_TAG)) {
        auto options = FramedOptions<Options>();
        Apply(wrong, options);
        void* untouched = kUntouched;
        ExpectMarshalingException(wrong, [&] { this->create(&untouched, options.record()); });
        EXPECT_EQ(untouched, kUntouched) << wrong;
    }
}

TYPED_TEST(FramingOfEveryOperation, IsNotLookedForAroundNullOptions) {
    void* untouched = kUntouched;
    EXPECT_THROW(this->create(&untouched, nullptr), std::invalid_argument);
    EXPECT_EQ(untouched, kUntouched);
}

TYPED_TEST(FramingOfEveryOperation, OfOptionsNeedsAnAddressForTheHandle) {
    auto options = FramedOptions<typename TypeParam::Options>();
    GiveWhatIsNeeded(*options);
    EXPECT_THROW(this->create(nullptr, options.record()), std::invalid_argument);
}

TYPED_TEST(FramingOfEveryOperation, IsCheckedForTheInput) {
    using Input = typename TypeParam::Input;
    for (const WrongFrame& wrong : WrongFrames(sizeof(Input), QUARRY_INPUT_TAG)) {
        auto input = FramedInput<Input>();
        Apply(wrong, input);
        auto result = FramedResult<typename TypeParam::Result>(0xB7);
        const auto before = result.Bytes();
        ExpectMarshalingException(wrong, [&] { this->Feed(input, result); });
        EXPECT_EQ(result.Bytes(), before) << wrong;
    }
}

TYPED_TEST(FramingOfEveryOperation, IsCheckedForTheResult) {
    using Result = typename TypeParam::Result;
    for (const WrongFrame& wrong : WrongFrames(sizeof(Result), QUARRY_RESULT_TAG)) {
        auto result = FramedResult<Result>(0xB7);
        Apply(wrong, result);
        const auto before = result.Bytes();
        ExpectMarshalingException(wrong, [&] { this->HandOver(result); });
        if (!TypeParam::kUpdater) {
            auto input = FramedInput<typename TypeParam::Input>();
            ExpectMarshalingException(wrong, [&] { this->Feed(input, result); });
        }
        EXPECT_EQ(result.Bytes(), before) << wrong;
    }
}

// ---- options

using FramingOfOptions = Framing;

TEST_F(FramingOfOptions, HasNoMeaningForTheBytesBeforeTheLength) {
    QUARRY_FRAMED(ProcessOptions)
    options = {-1, sizeof(ProcessOptions), {0xFFFFFFFFU, 0xFFFFFFFFU}, QUARRY_OPTIONS_TAG};
    void* handle = nullptr;
    library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")(&handle, &options.Record);
    EXPECT_NE(handle, nullptr);
    library.Dispose(handle);
}

// ---- records of a processor

class FramingOfAProcessor : public Framing {
protected:
    void SetUp() override {
        auto options = FramedOptions<ProcessOptions>();
        library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")(&handle, options.record());
    }
    void TearDown() override { library.Dispose(handle); }

    Framed<VoLInputData> Input() const {
        auto input = FramedInput<VoLInputData>();
        input->Image = ImageOf(frame);
        return input;
    }

    void* handle = nullptr;
    const cv::Mat frame = RandomFrame(16, 12, 3);
};

TEST_F(FramingOfAProcessor, IsCheckedForTheInput) {
    for (const WrongFrame& wrong : WrongFrames(40, QUARRY_INPUT_TAG)) {
        auto input = Input();
        Apply(wrong, input);
        auto result = FramedResult<VoLOutputData>();
        ExpectMarshalingException(
            wrong, [&] { library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()); });
    }
}

TEST_F(FramingOfAProcessor, LeavesTheResultUntouchedWhenTheInputsIsWrong) {
    for (const WrongFrame& wrong : WrongFrames(40, QUARRY_INPUT_TAG)) {
        auto input = Input();
        Apply(wrong, input);
        auto result = FramedResult<VoLOutputData>(0xB7);
        const auto before = result.Bytes();
        EXPECT_THROW(library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
        EXPECT_EQ(result.Bytes(), before) << wrong;
    }
}

TEST_F(FramingOfAProcessor, IsCheckedForTheResult) {
    for (const WrongFrame& wrong : WrongFrames(8, QUARRY_RESULT_TAG)) {
        auto input = Input();
        auto result = FramedResult<VoLOutputData>();
        Apply(wrong, result);
        ExpectMarshalingException(
            wrong, [&] { library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()); });
    }
}

TEST_F(FramingOfAProcessor, LeavesTheResultUntouchedWhenItsIsWrong) {
    for (const WrongFrame& wrong : WrongFrames(8, QUARRY_RESULT_TAG)) {
        auto input = Input();
        auto result = FramedResult<VoLOutputData>(0xB7);
        Apply(wrong, result);
        const auto before = result.Bytes();
        EXPECT_THROW(library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
        EXPECT_EQ(result.Bytes(), before) << wrong;
    }
}

TEST_F(FramingOfAProcessor, IsCheckedBeforeThePixelsAreRead) {
    auto input = Input();
    input->Image.data = nullptr;  // OpenCV would refuse it
    auto result = FramedResult<VoLOutputData>();
    result.SetTag(QUARRY_INPUT_TAG);
    EXPECT_THROW(library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
}

TEST_F(FramingOfAProcessor, IsCheckedForAResultThatIsGivenBack) {
    for (const WrongFrame& wrong : WrongFrames(8, QUARRY_RESULT_TAG)) {
        auto result = FramedResult<VoLOutputData>(0xB7);
        Apply(wrong, result);
        const auto before = result.Bytes();
        ExpectMarshalingException(wrong, [&] { library.DisposeResult(handle, result.as<ProcessResult>()); });
        EXPECT_EQ(result.Bytes(), before) << wrong;
    }
}

TEST_F(FramingOfAProcessor, LeavesTheProcessorUsableWhenItIsWrong) {
    auto input = Input();
    auto result = FramedResult<VoLOutputData>();
    library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
    const float variance = result->Variance;
    input.SetTag(0);
    EXPECT_THROW(library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()), MarshalingException);
    input.SetTag(QUARRY_INPUT_TAG);
    library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(result->Variance, variance);
}

TEST_F(FramingOfAProcessor, HasNoMeaningForHeaderAndPadding) {
    auto plain = Input();
    auto filled = FramedInput<VoLInputData>(0xFF);
    filled->Image.data = plain->Image.data;
    filled->Image.width = plain->Image.width;
    filled->Image.height = plain->Image.height;
    auto first = FramedResult<VoLOutputData>();
    auto second = FramedResult<VoLOutputData>();
    library.Process(handle, plain.as<ProcessData>(), first.as<ProcessResult>());
    library.Process(handle, filled.as<ProcessData>(), second.as<ProcessResult>());
    EXPECT_GT(first->Variance, 0.0F);
    EXPECT_EQ(second->Variance, first->Variance);
}

// ---- records of an updater

class FramingOfAnUpdater : public Framing {
protected:
    void SetUp() override { handle = CreateBackgroundModel(library); }
    void TearDown() override { library.Dispose(handle); }

    void* handle = nullptr;
    const cv::Mat frame = MovingSquare(32, 24, 0);
    const cv::Mat other = RandomFrame(32, 24, 8);
};

TEST_F(FramingOfAnUpdater, IsCheckedForTheFirstFrame) {
    for (const WrongFrame& wrong : WrongFrames(48, QUARRY_INPUT_TAG)) {
        auto input = BackgroundInput(frame, kTicksPerSecond);
        Apply(wrong, input);
        ExpectMarshalingException(wrong, [&] { library.Update(handle, input.as<UpdateData>()); });
    }
}

TEST_F(FramingOfAnUpdater, LeavesTheUpdaterWithoutAResultWhenTheFirstFramesIsWrong) {
    for (const WrongFrame& wrong : WrongFrames(48, QUARRY_INPUT_TAG)) {
        auto input = BackgroundInput(frame, kTicksPerSecond);
        Apply(wrong, input);
        EXPECT_THROW(library.Update(handle, input.as<UpdateData>()), MarshalingException);
        auto result = FramedResult<BackgroundResult>();
        EXPECT_THROW(library.GetUpdateResult(handle, result.as<UpdateResult>()), std::logic_error) << wrong;
    }
}

TEST_F(FramingOfAnUpdater, LeavesTheResultAsItWasWhenALaterFramesIsWrong) {
    const BackgroundView before = Feed(library, handle, frame, kTicksPerSecond);
    for (const WrongFrame& wrong : WrongFrames(48, QUARRY_INPUT_TAG)) {
        auto input = BackgroundInput(other, 9 * kTicksPerSecond);
        Apply(wrong, input);
        ExpectMarshalingException(wrong, [&] { library.Update(handle, input.as<UpdateData>()); });
        EXPECT_EQ(ViewOf(library, handle, before.state), before) << wrong;
    }
}

TEST_F(FramingOfAnUpdater, LeavesTheStateAsItWasWhenALaterFramesIsWrong) {
    void* const undisturbed = CreateBackgroundModel(library);
    Feed(library, handle, frame, kTicksPerSecond);
    Feed(library, undisturbed, frame, kTicksPerSecond);
    auto input = BackgroundInput(other, 9 * kTicksPerSecond);  // would end the learning
    input.SetTag(QUARRY_RESULT_TAG);
    EXPECT_THROW(library.Update(handle, input.as<UpdateData>()), MarshalingException);
    const BackgroundView after = Feed(library, handle, other, 2 * kTicksPerSecond);
    EXPECT_EQ(after, Feed(library, undisturbed, other, 2 * kTicksPerSecond));
    EXPECT_EQ(after.state, Accumulating);
    library.Dispose(undisturbed);
}

TEST_F(FramingOfAnUpdater, IsCheckedForTheResult) {
    Feed(library, handle, frame, kTicksPerSecond);
    for (const WrongFrame& wrong : WrongFrames(32, QUARRY_RESULT_TAG)) {
        auto result = FramedResult<BackgroundResult>(0xB7);
        Apply(wrong, result);
        const auto before = result.Bytes();
        ExpectMarshalingException(wrong, [&] { library.GetUpdateResult(handle, result.as<UpdateResult>()); });
        EXPECT_EQ(result.Bytes(), before) << wrong;
    }
}

TEST_F(FramingOfAnUpdater, IsCheckedBeforeAResultIsMissed) {
    auto result = FramedResult<BackgroundResult>();
    result.SetLength(16);
    EXPECT_THROW(library.GetUpdateResult(handle, result.as<UpdateResult>()), MarshalingException);
}

TEST_F(FramingOfAnUpdater, IsCheckedBeforeTheResultIsBroughtUpToDate) {
    auto kept = FramedResult<BackgroundResult>();
    Feed(library, handle, frame, kTicksPerSecond);
    library.GetUpdateResult(handle, kept.as<UpdateResult>());
    auto input = BackgroundInput(other, 2 * kTicksPerSecond);
    library.Update(handle, input.as<UpdateData>());
    auto wrong = FramedResult<BackgroundResult>();
    wrong.SetTag(QUARRY_INPUT_TAG);
    EXPECT_THROW(library.GetUpdateResult(handle, wrong.as<UpdateResult>()), MarshalingException);
    EXPECT_EQ(kept->BackgroundImage->timestamp, kTicksPerSecond);
}

TEST_F(FramingOfAnUpdater, KeepsThePaddingOfTheHostsRecord) {
    auto input = BackgroundInput(frame, kTicksPerSecond);
    library.Update(handle, input.as<UpdateData>());
    auto result = FramedResult<BackgroundResult>(0xB7);
    library.GetUpdateResult(handle, result.as<UpdateResult>());
    EXPECT_EQ(result->Status, 0);
    const auto bytes = result.Bytes();
    for (const std::size_t padding : {4U, 5U, 6U, 7U}) EXPECT_EQ(bytes[padding], 0xB7) << "byte " << padding;
}

TEST_F(FramingOfAnUpdater, HasNoMeaningForHeaderAndPadding) {
    void* const twin = CreateBackgroundModel(library);
    auto filled = FramedInput<BackgroundData>(0xFF);
    filled->Image.data = frame.data;
    filled->Image.width = frame.cols;
    filled->Image.height = frame.rows;
    filled->Image.timestamp = kTicksPerSecond;
    const int32_t state = library.Update(handle, filled.as<UpdateData>());
    EXPECT_EQ(ViewOf(library, handle, state), Feed(library, twin, frame, kTicksPerSecond));
    library.Dispose(twin);
}

}  // namespace
