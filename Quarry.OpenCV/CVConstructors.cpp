#include <stdexcept>

#include "Quarry.OpenCV/CVAffineTransformProcessor.h"
#include "Quarry.OpenCV/CVBackgroundUpdater.h"
#include "Quarry.OpenCV/CVCascadeClassifier.h"
#include "Quarry.OpenCV/CVClustererContours.h"
#include "Quarry.OpenCV/CVColorProcessor.h"
#include "Quarry.OpenCV/CVContourComparator.h"
#include "Quarry.OpenCV/CVContourIntersectionProcessor.h"
#include "Quarry.OpenCV/CVContourMaskProcessor.h"
#include "Quarry.OpenCV/CVContourProcessor.h"
#include "Quarry.OpenCV/CVCosineSimilarity.h"
#include "Quarry.OpenCV/CVDenseOpticalFlowUpdater.h"
#include "Quarry.OpenCV/CVFaceLaplacianVarianceProcessor.h"
#include "Quarry.OpenCV/CVFastNlMeansDenoisingFilter.h"
#include "Quarry.OpenCV/CVHogSvmClassifier.h"
#include "Quarry.OpenCV/CVImageAbsSubtractor.h"
#include "Quarry.OpenCV/CVKMeanColorExtractor.h"
#include "Quarry.OpenCV/CVLaplacianVarianceProcessor.h"
#include "Quarry.OpenCV/CVMosseTrackerUpdater.h"
#include "Quarry.OpenCV/CVOpticalFlowLineInvoker.h"
#include "Quarry.OpenCV/CVPixelwiseFireProcessor.h"
#include "Quarry.OpenCV/CVRectExtractor.h"
#include "Quarry.OpenCV/CVRotationTransformProcessor.h"
#include "Quarry/Quarry.h"

namespace {

/// Builds a handle and stores it only when everything has succeeded.
template <class Handle, class Options>
void Create(void** handle, Options* options) {
    if (handle == nullptr) throw std::invalid_argument("handle is null; the address to write the handle to is needed");
    Invokable* const created = new Handle(options);
    *handle = created;
}

}  // namespace

extern "C" {

void CreateCVImageAbsSubtractor(void** handle, BinaryImageOperationOptions* options) {
    Create<CVImageAbsSubtractor>(handle, options);
}

void CreateCVContourCalculator(void** handle, ContourCalcingOptions* options) {
    Create<CVContourProcessor>(handle, options);
}

void CreateCVColorComparator(void** handle, ColorComparingOptions* options) {
    Create<CVColorProcessor>(handle, options);
}

void CreateCVContourRateCalculator(void** handle, ContourRateMeasuringOptions* options) {
    Create<CVContourComparator>(handle, options);
}

void CreateCVBackgroundModel(void** handle, BackgroundOptions* options) {
    Create<CVBackgroundUpdater>(handle, options);
}

void CreateCVHogSvmHumanClassifier(void** handle, ClassificationOptions* options) {
    Create<CVHogSvmClassifier>(handle, options);
}

void CreateCVCascadeClassifier(void** handle, ClassificationOptions* options) {
    Create<CVCascadeClassifier>(handle, options);
}

void CreateCVDenseOpticalFlowCalculator(void** handle, OFCOptions* options) {
    Create<CVDenseOpticalFlowUpdater>(handle, options);
}

void CreateCVOpticalFlowLineProcessor(void** handle, OFLineOptions* options) {
    Create<CVOpticalFlowLineInvoker>(handle, options);
}

void CreateCVRectExtractor(void** handle, RectExtractorOptions* options) {
    Create<CVRectExtractorInvoker>(handle, options);
}

void CreateCVKMeanColorExtractor(void** handle, KMeanOptions* options) {
    Create<CVKMeanColorExtractorInvoker>(handle, options);
}

void CreateCVClustererContours(void** handle, ClustererOptions* options) {
    Create<CVClustererContours>(handle, options);
}

void CreateCVFastNlMeansDenoisingFilter(void** handle, FilterOptions* options) {
    Create<CVFastNlMeansDenoisingFilter>(handle, options);
}

void CreateCVContourIntersectionProcessor(void** handle, ContourIntersectionProcessorOptions* options) {
    Create<CVContourIntersectionProcessor>(handle, options);
}

void CreateCVContourMaskProcessor(void** handle, ContourMaskProcessorOptions* options) {
    Create<CVContourMaskProcessor>(handle, options);
}

void CreateCVAffineTransformProcessor(void** handle, TransformOptions* options) {
    Create<CVAffineTransformProcessor>(handle, options);
}

void CreateCVRotationTransformProcessor(void** handle, TransformOptions* options) {
    Create<CVRotationTransformProcessor>(handle, options);
}

void CreateCVLaplacianVarianceProcessor(void** handle, ProcessOptions* options) {
    Create<CVLaplacianVarianceProcessor>(handle, options);
}

void CreateCVFaceLaplacianVarianceProcessor(void** handle, ProcessOptions* options) {
    Create<CVFaceLaplacianVarianceProcessor>(handle, options);
}

void CreateCVMosseTracker(void** handle, MosseTrackerOptions* options) {
    Create<CVMosseTrackerUpdater>(handle, options);
}

void CreateCVCosineSimilarity(void** handle, ProcessOptions* options) {
    Create<CVCosineSimilarity>(handle, options);
}

void CreateCVPixelwiseFireProcessor(void** handle, ProcessOptions* options) {
    Create<CVPixelwiseFireProcessor>(handle, options);
}

}  // extern "C"
