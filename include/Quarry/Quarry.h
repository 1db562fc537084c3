/// @file
/// Quarry: computer-vision building blocks for video-analysis hosts, behind C functions that exchange framed records.
///
/// Conventions that every function here follows:
///
/// 1. **Handles are opaque.** A factory writes one to `*handle` when everything has succeeded and leaves `*handle`
///    as it was otherwise; `Dispose` ends it. To start over, dispose of it and create another.
/// 2. **One thread per handle** at a time. Distinct handles share nothing and may run side by side.
/// 3. **A record is framed** by a length word before it and a tag after it (Framing.h). Only its address is passed, and
///    the library keeps neither options nor input records after the call.
/// 4. **Input buffers stay the host's** and are read in place during the call, unless an operation says otherwise.
/// 5. **Result buffers of a processor go back through `DisposeResult`**, once, before the record is filled again.
///    Those of an updater stay the updater's: valid until its next `Update` or `Dispose`, never given back.
/// 6. **Failures are C++ exceptions**, thrown through these functions: MarshalingException for a wrong frame,
///    `cv::Exception` for what OpenCV refuses (null pixels among it), `std::bad_alloc` for memory,
///    `std::invalid_argument` for a handle or a pointer that is null or of the wrong kind and for a field out of its
///    range, `std::logic_error` for a call out of turn. A call that fails leaves the host's record, the handle and
///    `*handle` as they were, unless an operation says otherwise.
#pragma once

#include "Quarry/Export.h"
#include "Quarry/Framing.h"
#include "Quarry/Records/AffineTransformProcessor.h"
#include "Quarry/Records/BackgroundUpdating.h"
#include "Quarry/Records/Classification.h"
#include "Quarry/Records/ClustererContours.h"
#include "Quarry/Records/ColorComparingProcessor.h"
#include "Quarry/Records/ContourCalcingProcessor.h"
#include "Quarry/Records/ContourIntersectionProcessorPT.h"
#include "Quarry/Records/ContourMaskProcessorDC.h"
#include "Quarry/Records/ContourRateMeasuringProcessor.h"
#include "Quarry/Records/CosineSimilarity.h"
#include "Quarry/Records/DenseOpticalFlowCalculator.h"
#include "Quarry/Records/FaceVarianceOfLaplacian.h"
#include "Quarry/Records/FastNlMeansDenoisingFilter.h"
#include "Quarry/Records/ImageSubtractor.h"
#include "Quarry/Records/KMeanColorExtractor.h"
#include "Quarry/Records/MosseTracker.h"
#include "Quarry/Records/OpticalFlowLineProcessor.h"
#include "Quarry/Records/PixelwiseFire.h"
#include "Quarry/Records/ProcessOptions.h"
#include "Quarry/Records/RectExtractor.h"
#include "Quarry/Records/RotationTransformProcessor.h"
#include "Quarry/Records/Transform.h"
#include "Quarry/Records/VarianceOfLaplacian.h"
#include "Quarry/SharedRecords.h"

#ifdef __cplusplus
#include "Quarry/MarshalingException.h"

extern "C" {
#endif

/// The input record of whatever processor a handle holds; cast the record's address to it.
typedef struct ProcessData ProcessData;
/// The result record of whatever processor a handle holds.
typedef struct ProcessResult ProcessResult;
/// The input record of whatever updater a handle holds.
typedef struct UpdateData UpdateData;
/// The result record of whatever updater a handle holds.
typedef struct UpdateResult UpdateResult;

/// How far an updater has come.
enum UpdaterState {
    NoResult = 0,      ///< nothing computed yet, or nothing of this frame
    Accumulating = 1,  ///< frames are taken in, the result is not final
    Ready = 2          ///< the result reflects a complete computation
};

/// Processes one input record and fills the result record.
/// The result's buffers are the host's to give back with `DisposeResult`.
QUARRY_API void Process(void* handle, ProcessData* input, ProcessResult* result);

/// Releases the buffers of a result that `Process` filled, not the record itself.
QUARRY_API void DisposeResult(void* handle, ProcessResult* result);

/// Feeds one frame to an updater.
/// @return the updater's state after this frame, an `UpdaterState`
QUARRY_API int32_t Update(void* handle, UpdateData* data);

/// Fills the record with the updater's current result; its buffers stay the updater's.
/// @throws std::logic_error  there is none: no `Update` yet, or the last one that began anew failed
QUARRY_API void GetUpdateResult(void* handle, UpdateResult* result);

/// Ends a handle and everything it owns. Null is allowed and does nothing.
QUARRY_API void Dispose(void* handle);

/// Absolute difference of two frames: takes BinaryImageOperationData, gives ImageOperationResult (processor).
QUARRY_API void CreateCVImageAbsSubtractor(void** handle, BinaryImageOperationOptions* options);

/// Contour of an object: takes ContourCalcingInputData, gives ContourResult (processor).
QUARRY_API void CreateCVContourCalculator(void** handle, ContourCalcingOptions* options);

/// Colours of a region in two frames: takes ColorComparingInputData, gives ColorComparingOutputData (processor).
QUARRY_API void CreateCVColorComparator(void** handle, ColorComparingOptions* options);

/// Shape change rate: takes ContourRateMeasuringInputData, gives ContourRateMeasuringOutputData (processor).
/// A contour that counts 0 points aborts the process.
QUARRY_API void CreateCVContourRateCalculator(void** handle, ContourRateMeasuringOptions* options);

/// Background model: takes BackgroundData, gives BackgroundResult (updater). GetUpdateResult reads the last frame's
/// pixels again. An Update that fails over a frame of another size may have ended the buffers of earlier results.
QUARRY_API void CreateCVBackgroundModel(void** handle, BackgroundOptions* options);

/// People detector: takes ClassificationData, gives ClassificationResult (processor).
QUARRY_API void CreateCVHogSvmHumanClassifier(void** handle, ClassificationOptions* options);

/// Cascade detector: takes ClassificationData, gives ClassificationResult (processor). The model is read here; that
/// there is none is found out at Process, as an exception of OpenCV.
/// @throws std::invalid_argument  `Mode` is above 2, or `CascadePath` is null
/// @throws cv::Exception          `CascadePath` is empty, or what is there cannot be parsed
QUARRY_API void CreateCVCascadeClassifier(void** handle, ClassificationOptions* options);

/// Dense optical flow: takes OFCData, gives OFCResult (updater). An Update that fails may have begun to write into the
/// result or, over a frame of another size, have ended the buffer of earlier results.
QUARRY_API void CreateCVDenseOpticalFlowCalculator(void** handle, OFCOptions* options);

/// Motion across a line: takes OFLineData, gives OFLineResult (processor).
QUARRY_API void CreateCVOpticalFlowLineProcessor(void** handle, OFLineOptions* options);

/// Rotated rectangle cut out of a frame: takes RectExtractorData, gives RectExtractorResult (processor).
QUARRY_API void CreateCVRectExtractor(void** handle, RectExtractorOptions* options);

/// Dominant clothing colours: takes KMeanData, gives KMeanResult (processor).
QUARRY_API void CreateCVKMeanColorExtractor(void** handle, KMeanOptions* options);

/// Contour clusters: takes ClustererData, gives ClustererResult (processor).
QUARRY_API void CreateCVClustererContours(void** handle, ClustererOptions* options);

/// Non-local means denoising: takes FilterData, gives FilterResult (processor).
QUARRY_API void CreateCVFastNlMeansDenoisingFilter(void** handle, FilterOptions* options);

/// Contour against a polygon: takes ContourIntersectionProcessorData, gives ContourInstersectionProcessorResult
/// (processor).
QUARRY_API void CreateCVContourIntersectionProcessor(void** handle, ContourIntersectionProcessorOptions* options);

/// Grid of cells that objects occupy: takes ContourMaskProcessorData, gives ContourMaskProcessorResult (processor).
/// `DisposeResult` leaves the grid in place: the host releases it with DestroyContourMaskProcessorResult (Memory.h).
QUARRY_API void CreateCVContourMaskProcessor(void** handle, ContourMaskProcessorOptions* options);

/// Alignment by five point pairs: takes AffineTransformData, gives TransformResult (processor). Any other number of
/// points aborts the process.
QUARRY_API void CreateCVAffineTransformProcessor(void** handle, TransformOptions* options);

/// Rotation of a frame: takes RotationTransformData, gives TransformResult (processor).
QUARRY_API void CreateCVRotationTransformProcessor(void** handle, TransformOptions* options);

/// Sharpness of a frame: takes VoLInputData, gives VoLOutputData (processor).
QUARRY_API void CreateCVLaplacianVarianceProcessor(void** handle, ProcessOptions* options);

/// Sharpness of a face: takes FaceVoLInputData, gives VoLOutputData (processor).
QUARRY_API void CreateCVFaceLaplacianVarianceProcessor(void** handle, ProcessOptions* options);

/// Correlation tracker: takes MosseTrackerData, gives MosseTrackerResult (updater; its state is always NoResult).
/// @throws std::invalid_argument  `TrackerMode` is neither 0 nor 1
QUARRY_API void CreateCVMosseTracker(void** handle, MosseTrackerOptions* options);

/// Cosine similarity of two embeddings: takes EmbeddingData, gives CosineOutputData (processor).
QUARRY_API void CreateCVCosineSimilarity(void** handle, ProcessOptions* options);

/// Fire pixels: takes FireInputData, gives FireOutputData (processor).
QUARRY_API void CreateCVPixelwiseFireProcessor(void** handle, ProcessOptions* options);

#ifdef __cplusplus
}
#endif
