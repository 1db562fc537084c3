#include "support/AllOperations.h"

#include <exception>
#include <opencv2/core.hpp>
#include <stdexcept>

#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"
#include "support/Framed.h"
#include "support/ResultBytes.h"
#include "support/Scenes.h"

namespace quarry::test {

namespace {

constexpr uint64_t kRandomState = 12345;
const char* const kFaces = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";

/// What a processor and an updater have in common.
template <class Options, class Input, class Output>
class Sample : public Operation {
public:
    using Factory = void (*)(void**, Options*);

    Sample(const char* called, bool updates, Factory makes, const Options& wanted, const Input& given)
        : Operation(called, updates), factory(makes) {
        *options = wanted;
        *input = given;
    }

    void Create(void** handle) override { factory(handle, options.record()); }
    Buffer Record() override {
        const auto bytes = record.Bytes();
        return {bytes.begin(), bytes.end()};
    }
    Buffer Result() override { return ResultBytes(*record).bytes; }

protected:
    Framed<Options> options = FramedOptions<Options>();
    Framed<Input> input = FramedInput<Input>();
    Framed<Output> record = FramedResult<Output>(0xA5);

private:
    Factory factory;
};

template <class Options, class Input, class Output>
class SampleProcessor : public Sample<Options, Input, Output> {
public:
    SampleProcessor(const char* called, typename Sample<Options, Input, Output>::Factory makes, const Options& wanted,
                    const Input& given)
        : Sample<Options, Input, Output>(called, false, makes, wanted, given) {}

    void Feed(void* /*handle*/, const Image& /*frame*/) override {}
    void Fill(void* handle) override {
        cv::theRNG().state = kRandomState;
        Process(handle, this->input.template as<ProcessData>(), this->record.template as<ProcessResult>());
    }
    void GiveBack(void* handle) override { DisposeResult(handle, this->record.template as<ProcessResult>()); }
};

template <class Options, class Input, class Output>
class SampleUpdater : public Sample<Options, Input, Output> {
public:
    SampleUpdater(const char* called, typename Sample<Options, Input, Output>::Factory makes, const Options& wanted,
                  const Input& given)
        : Sample<Options, Input, Output>(called, true, makes, wanted, given) {}

    void Feed(void* handle, const Image& frame) override {
        this->input->Image = frame;
        Update(handle, this->input.template as<UpdateData>());
    }
    void Fill(void* handle) override { GetUpdateResult(handle, this->record.template as<UpdateResult>()); }
    void GiveBack(void* /*handle*/) override {}
};

class SampleDetector : public SampleProcessor<ClassificationOptions, ClassificationData, ClassificationResult> {
public:
    SampleDetector(const char* called, Factory makes, const ClassificationOptions& wanted, const cv::Mat& frame,
                   bool weighs)
        : SampleProcessor(called, makes, wanted, {0, ImageOf(frame), 1, {}, 1, &kWhole}), weighted(weighs) {}

    Buffer Result() override { return ResultBytes(*record, weighted).bytes; }

private:
    static constexpr RelRect kWhole = {0, 0, 1, 1};
    bool weighted;
};

/// The one whose result stays with the host.
class SampleGrid
    : public SampleProcessor<ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult> {
public:
    using SampleProcessor::SampleProcessor;
    void GiveBack(void* handle) override {
        SampleProcessor::GiveBack(handle);
        DestroyContourMaskProcessorResult(record.record());
    }
};

/// The library only reads the samples, though records have no word for it.
template <class Sampled>
Sampled* Readable(const Sampled* sample) {
    return const_cast<Sampled*>(sample);
}
PointArray PointsOf(const std::vector<FloatPoint>& points) {
    return {{static_cast<int32_t>(points.size())}, Readable(points.data())};
}
Contour ContourOf(const std::vector<FloatPoint>& points) {
    return {Readable(points.data()), static_cast<int32_t>(points.size()), 0, 0};
}

template <class Output, class Options, class Input>
std::unique_ptr<Operation> Processes(const char* name, void (*factory)(void**, Options*), const Options& options,
                                     const Input& input) {
    return std::make_unique<SampleProcessor<Options, Input, Output>>(name, factory, options, input);
}
template <class Output, class Input, class Options>
std::unique_ptr<Operation> Updates(const char* name, void (*factory)(void**, Options*), const Options& options,
                                   const Input& input) {
    return std::make_unique<SampleUpdater<Options, Input, Output>>(name, factory, options, input);
}

}  // namespace

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
    const SampleInputs& samples = Samples(frames);
    const auto scaled = [&](int pixels) { return static_cast<int16_t>(pixels * samples.scale); };
    const Image first = ImageOf(samples.first);
    const Image second = ImageOf(samples.second);
    const Image blobs = ImageOf(samples.blobs);
    const TransformOptions size = {0, 0, first.width, first.height};

    std::vector<std::unique_ptr<Operation>> all;
    all.push_back(Processes<ImageOperationResult>("ImageSubtractor", CreateCVImageAbsSubtractor, {},
                                                  BinaryImageOperationData{0, first, second}));
    all.push_back(Processes<ContourResult>(
        "ContourCalcingProcessor", CreateCVContourCalculator, {0, 0, 2, 0},
        ContourCalcingInputData{0, {samples.mask.data, samples.mask.cols, samples.mask.rows}, {0, 0, 1, 1}}));
    all.push_back(
        Processes<ColorComparingOutputData>("ColorComparingProcessor", CreateCVColorComparator, {},
                                            ColorComparingInputData{0, first, second, {0.1F, 0.1F, 0.8F, 0.8F}}));
    all.push_back(Processes<ContourRateMeasuringOutputData>(
        "ContourRateMeasuringProcessor", CreateCVContourRateCalculator, {0, 0, 1},
        ContourRateMeasuringInputData{0, ContourOf(samples.contour), ContourOf(samples.polygon), 640, 480, 1.0, 40.0}));
    all.push_back(Updates<BackgroundResult, BackgroundData>("BackgroundUpdating", CreateCVBackgroundModel,
                                                            {0, 0.5F, 100, 2.0F, 1.0F}, {}));
    all.push_back(std::make_unique<SampleDetector>("HogSvmHumanClassifier", CreateCVHogSvmHumanClassifier,
                                                   ClassificationOptions{0, 0.3F, 0.1, 1.0, 0, nullptr}, samples.people,
                                                   true));
    all.push_back(std::make_unique<SampleDetector>("CascadeClassifier", CreateCVCascadeClassifier,
                                                   ClassificationOptions{0, 0, 20, -1, 1, kFaces}, samples.face,
                                                   false));
    all.push_back(Updates<OFCResult, OFCData>("DenseOpticalFlowCalculator", CreateCVDenseOpticalFlowCalculator,
                                              {0, 0.5F, 0, 0.3F}, {}));
    all.push_back(Processes<OFLineResult>("OpticalFlowLineProcessor", CreateCVOpticalFlowLineProcessor, {},
                                          OFLineData{0, {}, Readable(&samples.flow), 0.1F, 0.2F, 0.9F, 0.8F, 20, 0}));
    all.push_back(Processes<RectExtractorResult>(
        "RectExtractor", CreateCVRectExtractor, {0, 0, 1},
        RectExtractorData{0, first, scaled(30), scaled(24), scaled(20), scaled(16), 30.0}));
    all.push_back(Processes<KMeanResult>("KMeanColorExtractor", CreateCVKMeanColorExtractor, {},
                                         KMeanData{0, first, PointsOf(samples.body)}));
    all.push_back(Processes<ClustererResult>("ClustererContours", CreateCVClustererContours, {0, 0.6F, 0.01F},
                                             ClustererData{0, blobs}));
    all.push_back(Processes<FilterResult>("FastNlMeansDenoisingFilter", CreateCVFastNlMeansDenoisingFilter, {},
                                          FilterData{0, ImageOf(samples.noise)}));
    all.push_back(Processes<ContourInstersectionProcessorResult>(
        "ContourIntersectionProcessorPT", CreateCVContourIntersectionProcessor, {},
        ContourIntersectionProcessorData{0, ContourOf(samples.polygon), ContourOf(samples.contour)}));
    all.push_back(std::make_unique<SampleGrid>("ContourMaskProcessorDC", CreateCVContourMaskProcessor,
                                               ContourMaskProcessorOptions{0, 0.3F, 0.01F},
                                               ContourMaskProcessorData{0, blobs, 8, 6}));
    all.push_back(Processes<TransformResult>(
        "AffineTransformProcessor", CreateCVAffineTransformProcessor, size,
        AffineTransformData{0, first, PointsOf(samples.movedCorners), PointsOf(samples.corners)}));
    all.push_back(Processes<TransformResult>("RotationTransformProcessor", CreateCVRotationTransformProcessor, size,
                                             RotationTransformData{0, first, 30.0, 0.9}));
    all.push_back(Processes<VoLOutputData>("VarianceOfLaplacian", CreateCVLaplacianVarianceProcessor, {},
                                           VoLInputData{0, first}));
    all.push_back(Processes<VoLOutputData>("FaceVarianceOfLaplacian", CreateCVFaceLaplacianVarianceProcessor, {},
                                           FaceVoLInputData{0, first, scaled(30), scaled(24), scaled(12), scaled(16)}));
    all.push_back(Updates<MosseTrackerResult, MosseTrackerData>("MosseTracker", CreateCVMosseTracker, {0, {}, 1},
                                                                {0, {}, {0, scaled(10), scaled(32), scaled(32)}}));
    all.push_back(Processes<CosineOutputData>(
        "CosineSimilarity", CreateCVCosineSimilarity, {},
        EmbeddingData{0, 0, samples.firstEmbedding.data(), 0, samples.secondEmbedding.data()}));
    all.push_back(Processes<FireOutputData>("PixelwiseFire", CreateCVPixelwiseFireProcessor, {},
                                            FireInputData{0, ImageOf(samples.fire)}));
    return all;
}

std::unique_ptr<Operation> OperationNamed(const std::string& name, FrameSize frames) {
    for (auto& operation : AllOperations(frames)) {
        if (operation->name == name) return std::move(operation);
    }
    throw std::invalid_argument("no operation is called " + name);
}

std::vector<std::string> OperationNames() {
    std::vector<std::string> names;
    for (const auto& operation : AllOperations()) names.push_back(operation->name);
    return names;
}

std::vector<std::string> UpdaterNames() {
    std::vector<std::string> names;
    for (const auto& operation : AllOperations()) {
        if (operation->isUpdater) names.push_back(operation->name);
    }
    return names;
}

}  // namespace quarry::test
