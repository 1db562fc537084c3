// The public headers in a C++ host: they compile as C++17, every record is plain, and lies as it does in C.
#include <cstdlib>
#include <type_traits>

#include "Quarry/MarshalingException.h"
#include "Quarry/Memory.h"
#include "interface/Layouts.h"

namespace {

template <class... Records>
constexpr bool kArePlain = ((std::is_standard_layout_v<Records> && std::is_trivial_v<Records>)&&...);

static_assert(kArePlain<Image, Mask, FloatPoint, Contour, RelRect, PixelRect, RectArray, PointArray, FloatImage,
                        AbsVector, AbsVectorMatrix, Response, Cluster>,
              "a shared record can be copied byte by byte");
static_assert(
    kArePlain<ProcessOptions, BinaryImageOperationOptions, FilterOptions, ContourCalcingOptions,
              ContourMaskProcessorOptions, ContourIntersectionProcessorOptions, ContourRateMeasuringOptions,
              ClustererOptions, RectExtractorOptions, KMeanOptions, ClassificationOptions, ColorComparingOptions,
              TransformOptions, OFLineOptions, BackgroundOptions, OFCOptions, MosseTrackerOptions>,
    "an options record can be copied byte by byte");
static_assert(kArePlain<VoLInputData, FaceVoLInputData, BinaryImageOperationData, EmbeddingData, FilterData,
                        ContourCalcingInputData, ContourMaskProcessorData, ContourIntersectionProcessorData,
                        ContourRateMeasuringInputData, ClustererData, RectExtractorData, KMeanData, ClassificationData,
                        ColorComparingInputData, FireInputData, AffineTransformData, RotationTransformData, OFLineData,
                        BackgroundData, OFCData, MosseTrackerData>,
              "an input record can be copied byte by byte");
static_assert(kArePlain<VoLOutputData, ImageOperationResult, CosineOutputData, FilterResult, ContourResult,
                        ContourMaskProcessorResult, ContourInstersectionProcessorResult, ContourRateMeasuringOutputData,
                        ClustererResult, RectExtractorResult, KMeanResult, ClassificationResult,
                        ColorComparingOutputData, FireOutputData, TransformResult, OFLineResult, BackgroundResult,
                        OFCResult, MosseTrackerResult, FloatImageUpdaterResult, DepthMapCalcResult, SODResult>,
              "a result record can be copied byte by byte");

static_assert(std::is_same_v<decltype(Process), void(void*, ProcessData*, ProcessResult*)>);
static_assert(std::is_same_v<decltype(DisposeResult), void(void*, ProcessResult*)>);
static_assert(std::is_same_v<decltype(Update), int32_t(void*, UpdateData*)>);
static_assert(std::is_same_v<decltype(GetUpdateResult), void(void*, UpdateResult*)>);
static_assert(std::is_same_v<decltype(Dispose), void(void*)>);
static_assert(std::is_same_v<decltype(CreateCVLaplacianVarianceProcessor), void(void**, ProcessOptions*)>);
static_assert(std::is_same_v<decltype(CreateCVBackgroundModel), void(void**, BackgroundOptions*)>);

static_assert(sizeof(MarshalingException) == sizeof(void*), "the exception holds nothing but its table");

}  // namespace

int main() {
    return CountWrongLayouts() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
