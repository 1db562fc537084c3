#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"

using namespace quarry::fuzz;

namespace {

/// An operation, by its factory and the lengths of its records.
struct Kind {
    void (*create)(void** handle, void* options);
    std::size_t options;
    std::size_t input;
    std::size_t result;
    bool isUpdater;
    void (*prepare)(void* input);  ///< makes zeros an input that does not end the process
};

template <auto factory, class Options, class Input, class Result, bool isUpdater = false>
constexpr Kind KindOf(void (*prepare)(void* input) = [](void* /*input*/) {}) {
    const auto create = [](void** handle, void* options) { factory(handle, static_cast<Options*>(options)); };
    return {create, sizeof(Options), sizeof(Input), sizeof(Result), isUpdater, prepare};
}

void CountFivePoints(void* input) {
    auto* const data = static_cast<AffineTransformData*>(input);
    data->SrcPoints.Count = data->DstPoints.Count = 5;
}

void CountOnePoint(void* input) {
    auto* const data = static_cast<ContourRateMeasuringInputData*>(input);
    data->CurrentContour.Count = data->PreviousContour.Count = 1;
}

constexpr std::array kKinds = {
    KindOf<CreateCVImageAbsSubtractor, BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult>(),
    KindOf<CreateCVContourCalculator, ContourCalcingOptions, ContourCalcingInputData, ContourResult>(),
    KindOf<CreateCVColorComparator, ColorComparingOptions, ColorComparingInputData, ColorComparingOutputData>(),
    KindOf<CreateCVContourRateCalculator, ContourRateMeasuringOptions, ContourRateMeasuringInputData,
           ContourRateMeasuringOutputData>(CountOnePoint),
    KindOf<CreateCVBackgroundModel, BackgroundOptions, BackgroundData, BackgroundResult, true>(),
    KindOf<CreateCVHogSvmHumanClassifier, ClassificationOptions, ClassificationData, ClassificationResult>(),
    KindOf<CreateCVCascadeClassifier, ClassificationOptions, ClassificationData, ClassificationResult>(),
    KindOf<CreateCVDenseOpticalFlowCalculator, OFCOptions, OFCData, OFCResult, true>(),
    KindOf<CreateCVOpticalFlowLineProcessor, OFLineOptions, OFLineData, OFLineResult>(),
    KindOf<CreateCVRectExtractor, RectExtractorOptions, RectExtractorData, RectExtractorResult>(),
    KindOf<CreateCVKMeanColorExtractor, KMeanOptions, KMeanData, KMeanResult>(),
    KindOf<CreateCVClustererContours, ClustererOptions, ClustererData, ClustererResult>(),
    KindOf<CreateCVFastNlMeansDenoisingFilter, FilterOptions, FilterData, FilterResult>(),
    KindOf<CreateCVContourIntersectionProcessor, ContourIntersectionProcessorOptions, ContourIntersectionProcessorData,
           ContourInstersectionProcessorResult>(),
    KindOf<CreateCVContourMaskProcessor, ContourMaskProcessorOptions, ContourMaskProcessorData,
           ContourMaskProcessorResult>(),
    KindOf<CreateCVAffineTransformProcessor, TransformOptions, AffineTransformData, TransformResult>(CountFivePoints),
    KindOf<CreateCVRotationTransformProcessor, TransformOptions, RotationTransformData, TransformResult>(),
    KindOf<CreateCVLaplacianVarianceProcessor, ProcessOptions, VoLInputData, VoLOutputData>(),
    KindOf<CreateCVFaceLaplacianVarianceProcessor, ProcessOptions, FaceVoLInputData, VoLOutputData>(),
    KindOf<CreateCVMosseTracker, MosseTrackerOptions, MosseTrackerData, MosseTrackerResult, true>(),
    KindOf<CreateCVCosineSimilarity, ProcessOptions, EmbeddingData, CosineOutputData>(),
    KindOf<CreateCVPixelwiseFireProcessor, ProcessOptions, FireInputData, FireOutputData>()};

/// A record of zeros, null at times, in a frame that is right or wrong.
class Record {
public:
    Record(Bytes& bytes, std::size_t size, uint32_t tag) : storage(new unsigned char[kStart + size + sizeof(tag)]()) {
        isNull = bytes.Rarely();
        const auto rightLength = static_cast<int32_t>(size);
        const int32_t length = bytes.Rarely() ? LengthWord(bytes) : rightLength;
        const uint32_t word = bytes.Rarely() ? Tag(bytes) : tag;
        isRight = length == rightLength && word == tag;
        std::memcpy(storage.get() + kStart - sizeof(length), &length, sizeof(length));
        std::memcpy(storage.get() + kStart + size, &word, sizeof(word));
    }

    void* address() { return isNull ? nullptr : storage.get() + kStart; }
    void* contents() { return storage.get() + kStart; }

    bool isNull;
    bool isRight;

private:
    static constexpr std::size_t kStart = 8;

    static int32_t LengthWord(Bytes& bytes) { return bytes.Below(2) == 0 ? 4 * bytes.Below(32) : bytes.Any<int32_t>(); }
    static uint32_t Tag(Bytes& bytes) {
        constexpr std::array<uint32_t, 3> kTags = {QUARRY_OPTIONS_TAG, QUARRY_INPUT_TAG, QUARRY_RESULT_TAG};
        return bytes.Below(2) == 0 ? kTags[static_cast<std::size_t>(bytes.Below(3))] : bytes.Any<uint32_t>();
    }

    std::unique_ptr<unsigned char[]> storage;
};

/// Calls a driver. The frame's exception comes for a wrong frame, whenever nothing else is amiss, and only then.
/// @param isRight   whether every frame is right
/// @param isUsable  whether the handle and the records are there, and the handle is of the right kind
/// @return whether the call succeeded
template <class Call>
bool Called(Call call, bool isRight, bool isUsable) {
    try {
        const bool succeeded = Succeeds(call);
        Require(isRight || !isUsable, "a wrong frame is refused for what it is");
        Require(!succeeded || (isRight && isUsable), "nothing succeeds with what is wrong");
        return succeeded;
    } catch (const MarshalingException&) {
        Require(!isRight, "a right frame is not refused");
        return false;
    }
}

/// A handle and what it is; null is of any kind.
struct Held {
    const Kind* kind;
    RawHandle handle;
};

const Kind& AnyKind(Bytes& bytes) {
    return kKinds[static_cast<std::size_t>(bytes.Below(static_cast<int>(kKinds.size())))];
}

Held Create(Bytes& bytes) {
    const Kind& kind = AnyKind(bytes);
    Record options(bytes, kind.options, QUARRY_OPTIONS_TAG);
    void* handle = nullptr;
    const bool created = Called([&] { kind.create(&handle, options.address()); }, options.isRight, !options.isNull);
    Require(created == (handle != nullptr), "a factory that fails writes no handle");
    return {&kind, RawHandle(handle)};
}

void CallProcess(Bytes& bytes, const Kind& kind, void* handle, bool isUsable) {
    Record input(bytes, kind.input, QUARRY_INPUT_TAG);
    Record result(bytes, kind.result, QUARRY_RESULT_TAG);
    kind.prepare(input.contents());
    const auto process = [&] {
        Process(handle, static_cast<ProcessData*>(input.address()), static_cast<ProcessResult*>(result.address()));
    };
    if (Called(process, input.isRight && result.isRight, isUsable && !input.isNull && !result.isNull)) {
        DisposeResult(handle, static_cast<ProcessResult*>(result.address()));
    }
}

void CallDisposeResult(Bytes& bytes, const Kind& kind, void* handle, bool isUsable) {
    Record result(bytes, kind.result, QUARRY_RESULT_TAG);
    const auto dispose = [&] { DisposeResult(handle, static_cast<ProcessResult*>(result.address())); };
    Called(dispose, result.isRight, isUsable && !result.isNull);
}

void CallUpdate(Bytes& bytes, const Kind& kind, void* handle, bool isUsable) {
    Record input(bytes, kind.input, QUARRY_INPUT_TAG);
    const auto update = [&] { Update(handle, static_cast<UpdateData*>(input.address())); };
    Called(update, input.isRight, isUsable && !input.isNull);
}

void CallGetUpdateResult(Bytes& bytes, const Kind& kind, void* handle, bool isUsable) {
    Record result(bytes, kind.result, QUARRY_RESULT_TAG);
    const auto get = [&] { GetUpdateResult(handle, static_cast<UpdateResult*>(result.address())); };
    Called(get, result.isRight, isUsable && !result.isNull);
}

/// One of four drivers on a handle, of whichever kind it is.
void CallAny(Bytes& bytes, const Kind& kind, void* handle) {
    const bool processes = handle != nullptr && !kind.isUpdater;
    const bool updates = handle != nullptr && kind.isUpdater;
    switch (bytes.Below(4)) {
        case 0:
            CallProcess(bytes, kind, handle, processes);
            break;
        case 1:
            CallDisposeResult(bytes, kind, handle, processes);
            break;
        case 2:
            CallUpdate(bytes, kind, handle, updates);
            break;
        default:
            CallGetUpdateResult(bytes, kind, handle, updates);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    std::vector<Held> held;
    for (int step = bytes.Below(24); step >= 0; --step) {
        const auto choice = static_cast<std::size_t>(bytes.Below(static_cast<int>(held.size()) + 2));
        if (choice < held.size()) {
            CallAny(bytes, *held[choice].kind, held[choice].handle.get());
            if (bytes.Rarely()) held[choice].handle.reset();  // what is called later is called on null
        } else if (choice == held.size()) {
            held.push_back(Create(bytes));
        } else {
            CallAny(bytes, AnyKind(bytes), nullptr);
        }
    }
    Dispose(nullptr);
    return 0;
}
