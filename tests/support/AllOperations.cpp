#include "support/AllOperations.h"

#include <cstring>
#include <exception>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <type_traits>

#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"
#include "support/Framed.h"
#include "support/Operations.h"
#include "support/ResultBytes.h"
#include "support/Scenes.h"

namespace quarry::test {

namespace {

constexpr uint64_t kRandomState = 12345;
const char* const kFaces = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";
const RelRect kWhole = {0, 0, 1, 1};

// ---- what each operation works on: nothing but the fields that it reads is set

/// The library only reads the samples, though records have no word for it.
template <class Sampled>
Sampled* Readable(const Sampled* sample) {
    return const_cast<Sampled*>(sample);
}

void Show(Image& image, const cv::Mat& frame) {
    image.data = frame.data;
    image.width = frame.cols;
    image.height = frame.rows;
}
void Show(Contour& contour, const std::vector<FloatPoint>& points) {
    contour.Points = Readable(points.data());
    contour.Count = static_cast<int32_t>(points.size());
}
void Show(PointArray& array, const std::vector<FloatPoint>& points) {
    array.Points = Readable(points.data());
    array.Count = static_cast<int32_t>(points.size());
}

void Give(operations::VarianceOfLaplacian, const SampleInputs& samples, ProcessOptions&, VoLInputData& input) {
    Show(input.Image, samples.first);
}
void Give(operations::FaceVarianceOfLaplacian, const SampleInputs& samples, ProcessOptions&, FaceVoLInputData& input) {
    Show(input.Image, samples.first);
    input.FaceX = samples.Scaled(30);
    input.FaceY = samples.Scaled(24);
    input.FaceWidth = samples.Scaled(12);
    input.FaceHeight = samples.Scaled(16);
}
void Give(operations::ImageSubtractor, const SampleInputs& samples, BinaryImageOperationOptions&,
          BinaryImageOperationData& input) {
    input.FirstImage = ImageOf(samples.first);
    input.SecondImage.data = samples.second.data;
}
void Give(operations::CosineSimilarity, const SampleInputs& samples, ProcessOptions&, EmbeddingData& input) {
    input.FirstEmbedding = samples.firstEmbedding.data();
    input.SecondEmbedding = samples.secondEmbedding.data();
}
void Give(operations::FastNlMeansDenoising, const SampleInputs& samples, FilterOptions&, FilterData& input) {
    input.Image = ImageOf(samples.noise);
}
void Give(operations::BackgroundModel, const SampleInputs&, BackgroundOptions& options, BackgroundData&) {
    options.Sensitivity = 0.5F;
    options.HistoryLength = 100;
    options.AdaptationTime = 2.0F;
    options.LearningSpeedup = 1.0F;
}
void Give(operations::MosseTracker, const SampleInputs& samples, MosseTrackerOptions& options,
          MosseTrackerData& input) {
    options.TrackerMode = 1;
    input.InitialRect = {0, samples.Scaled(10), samples.Scaled(32), samples.Scaled(32)};
}
void Give(operations::DenseOpticalFlow, const SampleInputs&, OFCOptions& options, OFCData&) {
    options.Detail = 0.5F;
    options.Quality = 0.3F;
}
void Give(operations::OpticalFlowLine, const SampleInputs& samples, OFLineOptions&, OFLineData& input) {
    input.FlowMatrix = Readable(&samples.flow);
    input.LineStartX = 0.1F;
    input.LineStartY = 0.2F;
    input.LineEndX = 0.9F;
    input.LineEndY = 0.8F;
    input.ValuesCount = 20;
}
void Give(operations::ObjectContour, const SampleInputs& samples, ContourCalcingOptions& options,
          ContourCalcingInputData& input) {
    options.ApproximationMethod = 2;
    options.SelectionMode = 0;
    input.ObjectMask = {samples.mask.data, samples.mask.cols, samples.mask.rows};
    input.ObjectRect = kWhole;
}
void Give(operations::ContourGrid, const SampleInputs& samples, ContourMaskProcessorOptions& options,
          ContourMaskProcessorData& input) {
    options.CellFillRate = 0.3F;
    options.MinContourAreaRate = 0.01F;
    Show(input.Image, samples.blobs);
    input.GridWidth = 8;
    input.GridHeight = 6;
}
void Give(operations::ContourClusters, const SampleInputs& samples, ClustererOptions& options, ClustererData& input) {
    options.OutlinePrecision = 0.6F;
    options.MinContourAreaRate = 0.01F;
    Show(input.Image, samples.blobs);
}
void Give(operations::ContourIntersection, const SampleInputs& samples, ContourIntersectionProcessorOptions&,
          ContourIntersectionProcessorData& input) {
    Show(input.Polygon, samples.polygon);
    Show(input.TestContour, samples.contour);
}
void Give(operations::ContourRate, const SampleInputs& samples, ContourRateMeasuringOptions& options,
          ContourRateMeasuringInputData& input) {
    options.MatchMethod = 1;
    Show(input.CurrentContour, samples.contour);
    Show(input.PreviousContour, samples.polygon);
    input.FrameWidth = 640;
    input.FrameHeight = 480;
    input.Interval = 40.0;
}
void Give(operations::RectExtractor, const SampleInputs& samples, RectExtractorOptions& options,
          RectExtractorData& input) {
    options.Interpolation = 1;
    input.Image = ImageOf(samples.first);
    input.CenterX = samples.Scaled(30);
    input.CenterY = samples.Scaled(24);
    input.Width = samples.Scaled(20);
    input.Height = samples.Scaled(16);
    input.Angle = 30.0;
}
void Give(operations::ClothingColors, const SampleInputs& samples, KMeanOptions&, KMeanData& input) {
    Show(input.Image, samples.first);
    input.Keypoints.Points = Readable(samples.body.data());
}
void Give(operations::CascadeDetector, const SampleInputs& samples, ClassificationOptions& options,
          ClassificationData& input) {
    options.MinSize = 20;
    options.MaxSize = -1;
    options.Mode = 1;
    options.CascadePath = kFaces;
    Show(input.Frame, samples.face);
    input.Areas = &kWhole;
}
void Give(operations::PeopleDetector, const SampleInputs& samples, ClassificationOptions& options,
          ClassificationData& input) {
    options.Sensitivity = 0.3F;
    options.MinSize = 0.1;
    options.MaxSize = 1.0;
    Show(input.Frame, samples.people);
    input.WholeFrame = 1;
}
void Give(operations::ColorComparison, const SampleInputs& samples, ColorComparingOptions& options,
          ColorComparingInputData& input) {
    options.CompareMethod = 0;
    Show(input.FirstImage, samples.first);
    Show(input.SecondImage, samples.second);
    input.Area = {0.1F, 0.1F, 0.8F, 0.8F};
}
void Give(operations::FirePixels, const SampleInputs& samples, ProcessOptions&, FireInputData& input) {
    Show(input.Frame, samples.fire);
}
void Give(operations::SimilarityTransform, const SampleInputs& samples, TransformOptions& options,
          AffineTransformData& input) {
    options.Width = samples.first.cols;
    options.Height = samples.first.rows;
    Show(input.Frame, samples.first);
    input.Frame.timestamp = 0;
    Show(input.SrcPoints, samples.corners);
    Show(input.DstPoints, samples.movedCorners);
}
void Give(operations::RotationTransform, const SampleInputs& samples, TransformOptions& options,
          RotationTransformData& input) {
    options.Width = samples.first.cols;
    options.Height = samples.first.rows;
    const Image frame = ImageOf(samples.first);
    input.Frame.data = frame.data;
    input.Frame.stride = frame.stride;
    input.Frame.timestamp = frame.timestamp;
    input.Angle = 30.0;
    input.Scale = 0.9;
}

// ---- inputs that are refused

template <class Input>
auto Spoil(Input& input) -> decltype(static_cast<void>(input.Image.data)) {
    input.Image.data = nullptr;
}
template <class Input>
auto Spoil(Input& input) -> decltype(static_cast<void>(input.Frame.data)) {
    input.Frame.data = nullptr;
}
template <class Input>
auto Spoil(Input& input) -> decltype(static_cast<void>(input.SecondImage.data)) {
    input.SecondImage.data = nullptr;
}
void Spoil(EmbeddingData& input) {
    input.SecondEmbedding = nullptr;
}
void Spoil(OFLineData& input) {
    input.ValuesCount = -1;
}
void Spoil(ContourCalcingInputData& input) {
    input.ObjectMask.data = nullptr;
}
void Spoil(ContourIntersectionProcessorData& input) {
    input.TestContour.Points = nullptr;
}
void Spoil(ContourRateMeasuringInputData& input) {
    input.PreviousContour.Points = nullptr;
}
void Spoil(RectExtractorData& input) {
    input.Width = -1;
}

// ---- bytes of results that nobody writes

template <class Result>
constexpr bool kIsWrittenWhole =
    std::is_same_v<Result, VoLOutputData> || std::is_same_v<Result, ContourInstersectionProcessorResult> ||
    std::is_same_v<Result, KMeanResult> || std::is_same_v<Result, ClassificationResult> ||
    std::is_same_v<Result, MosseTrackerResult>;

/// What nobody writes of the others: what lies behind the status, or, without a status, the head and the tail.
template <class Result>
bool IsUnwritten(std::size_t byte) {
    if constexpr (kIsWrittenWhole<Result>) return false;
    if constexpr (std::is_same_v<Result, ClustererResult> || std::is_same_v<Result, OFLineResult>) {
        return byte < 8 || byte >= 20;
    }
    return 4 <= byte && byte < 8;
}

// ----

void Feed(Image& shown, const Image& frame) {
    shown.data = frame.data;
    shown.width = frame.width;
    shown.height = frame.height;
    shown.timestamp = frame.timestamp;
}

template <class Name>
class Sample : public Operation {
public:
    explicit Sample(FrameSize size) : Operation(Name::kName, Name::kIsUpdater), frames(size) { FillUnread(0); }

    void CallFactory(void** handle, void* optionsRecord) override {
        Name::kFactory(handle, static_cast<typename Name::Options*>(optionsRecord));
    }
    AnyRecord Options() override { return Any(options, QUARRY_OPTIONS_TAG); }
    AnyRecord Input() override { return Any(input, QUARRY_INPUT_TAG); }
    AnyRecord Record() override { return Any(record, QUARRY_RESULT_TAG); }

    void FillUnread(uint8_t byte) override {
        Options().Fill(byte);
        Input().Fill(byte);
        Give(Name(), Samples(frames), *options, *input);
    }
    void SpoilInput() override { Spoil(*input); }
    std::vector<bool> Unwritten() override {
        std::vector<bool> unwritten;
        for (std::size_t i = 0; i < sizeof(typename Name::Result); ++i) {
            unwritten.push_back(IsUnwritten<typename Name::Result>(i));
        }
        return unwritten;
    }
    Buffer Result() override {
        if constexpr (std::is_same_v<Name, operations::CascadeDetector>) return ResultBytes(*record, false).bytes;
        return ResultBytes(*record).bytes;
    }
    void Release() override {
        if constexpr (std::is_same_v<Name, operations::ContourGrid>) DestroyContourMaskProcessorResult(record.record());
    }
    void Feed(void* handle, const Image& frame) override {
        if constexpr (Name::kIsUpdater) {
            test::Feed(input->Image, frame);
            const AnyRecord given = Input();
            Update(handle, given.as<UpdateData>());
        }
    }

private:
    template <class Framed>
    static AnyRecord Any(Framed& framed, uint32_t tag) {
        return {sizeof(*framed), tag, reinterpret_cast<uint8_t*>(framed.record())};
    }

    FrameSize frames;
    Framed<typename Name::Options> options = FramedOptions<typename Name::Options>();
    Framed<typename Name::Input> input = FramedInput<typename Name::Input>();
    Framed<typename Name::Result> record = FramedResult<typename Name::Result>(0xA5);
};

template <class Wanted>
std::vector<std::string> NamesOf(Wanted wanted) {
    std::vector<std::string> names;
    for (const auto& operation : AllOperations()) {
        if (wanted(*operation)) names.push_back(operation->name);
    }
    return names;
}

}  // namespace

void AnyRecord::Fill(uint8_t byte) const {
    std::memset(bytes, byte, size);
}
void AnyRecord::SetLength(int32_t length) const {
    std::memcpy(bytes - sizeof(length), &length, sizeof(length));
}
void AnyRecord::SetTag(uint32_t word) const {
    std::memcpy(bytes + size, &word, sizeof(word));
}

void Operation::Fill(void* handle) {
    cv::theRNG().state = kRandomState;
    if (isUpdater) {
        GetUpdateResult(handle, Record().as<UpdateResult>());
    } else {
        Process(handle, Input().as<ProcessData>(), Record().as<ProcessResult>());
    }
}

void Operation::GiveBack(void* handle) {
    if (isUpdater) return;
    DisposeResult(handle, Record().as<ProcessResult>());
    Release();
}

Buffer Operation::Run(void* handle, const Image& frame) {
    Feed(handle, frame);
    Fill(handle);
    Buffer result = Result();
    GiveBack(handle);
    return result;
}

Buffer Operation::ResultIfAny(void* handle) {
    try {
        Fill(handle);
        return Result();
    } catch (const std::exception&) {  // no frame yet, or the last one was empty
        return {};
    }
}

std::vector<std::unique_ptr<Operation>> AllOperations(FrameSize frames) {
    std::vector<std::unique_ptr<Operation>> all;
#define QUARRY_SAMPLE(Name, ...) all.push_back(std::make_unique<Sample<operations::Name>>(frames));
    QUARRY_OPERATIONS(QUARRY_SAMPLE)
#undef QUARRY_SAMPLE
    return all;
}

std::unique_ptr<Operation> OperationNamed(const std::string& name, FrameSize frames) {
    for (auto& operation : AllOperations(frames)) {
        if (operation->name == name) return std::move(operation);
    }
    throw std::invalid_argument("no operation is called " + name);
}

std::vector<std::string> OperationNames() {
    return NamesOf([](const Operation& /*operation*/) { return true; });
}
std::vector<std::string> ProcessorNames() {
    return NamesOf([](const Operation& operation) { return !operation.isUpdater; });
}
std::vector<std::string> UpdaterNames() {
    return NamesOf([](const Operation& operation) { return operation.isUpdater; });
}

}  // namespace quarry::test
