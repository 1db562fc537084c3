/// @file
/// Quarry: computer-vision building blocks for video-analysis hosts, behind C functions that exchange framed records.
///
/// Conventions that every function here follows:
///
/// 1. **Handles are opaque.** A factory writes one to `*handle` when everything has succeeded and leaves `*handle`
///    as it was otherwise; `Dispose` ends it. To start over, dispose of it and create another.
/// 2. **One thread per handle** at a time. Distinct handles share nothing and may run side by side.
/// 3. **A record has an envelope**: a length word before it and a tag after it (Framing.h). Only the record's address
/// is
///    passed, and the library keeps neither options nor input records after the call.
/// 4. **Input buffers stay the host's** and are read in place during the call, unless an operation says otherwise.
/// 5. **Result buffers of a processor go back through `DisposeResult`**, once, before the record is filled again.
///    Those of an updater stay the updater's: valid until its next `Update` or `Dispose`, never given back.
/// 6. **Failures are C++ exceptions**, thrown through these functions: MarshalingException for a wrong envelope,
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
/// @throws std::logic_error  there is no result: no frame was taken in yet, or the last Update that began anew failed
QUARRY_API void GetUpdateResult(void* handle, UpdateResult* result);

/// Ends a handle and everything it owns. Null is allowed and does nothing.
QUARRY_API void Dispose(void* handle);

/// Absolute difference of two frames, byte by byte.
/// Takes BinaryImageOperationData, gives ImageOperationResult (processor).
/// @throws cv::Exception  `data` of either frame is null while the frame is not empty
/// @throws std::invalid_argument  the first frame's size is negative, or its `stride` leaves no room for packed rows (3
///     x width bytes each)
QUARRY_API void CreateCVImageAbsSubtractor(void** handle, BinaryImageOperationOptions* options);

/// The outline of one object in a mask, searched inside a rectangle around it.
/// Takes ContourCalcingInputData, gives ContourResult (processor).
/// Method: Suzuki and Abe, 1985.
/// @throws cv::Exception  the mask is empty or its `data` null, the rectangle does not lie inside the mask, or
///     `ApproximationMethod` is unknown or 0
QUARRY_API void CreateCVContourCalculator(void** handle, ContourCalcingOptions* options);

/// How alike the colours of the same region are in two frames: hue and saturation histograms.
/// Takes ColorComparingInputData, gives ColorComparingOutputData (processor).
/// @throws std::invalid_argument  a frame's row has more than 2147483647 bytes
/// @throws cv::Exception  `data` is null while a frame is not empty, the region is empty or does not lie inside both
///     frames, or `CompareMethod` is unknown
QUARRY_API void CreateCVColorComparator(void** handle, ColorComparingOptions* options);

/// How fast an object's shape changes: the distance of two of its contours by Hu moments, per second.
/// Takes ContourRateMeasuringInputData, gives ContourRateMeasuringOutputData (processor).
/// Method: Hu, 1962.
/// Aborts the process when a contour counts 0 points.
/// @throws std::bad_alloc  a contour counts fewer than 0 points
/// @throws std::invalid_argument  `Points` is null where some are counted
/// @throws cv::Exception  `MatchMethod` is unknown
QUARRY_API void CreateCVContourRateCalculator(void** handle, ContourRateMeasuringOptions* options);

/// Background image and foreground mask of a stream: a mixture of Gaussians per pixel.
/// Takes BackgroundData, gives BackgroundResult (updater). GetUpdateResult reads the last frame's pixels again. An
/// Update that fails over a frame of another size may have ended the buffers of earlier results.
/// Method: Zivkovic, ICPR 2004.
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty
/// @throws std::invalid_argument  the frame has more than 2147483647 bytes
QUARRY_API void CreateCVBackgroundModel(void** handle, BackgroundOptions* options);

/// Finds standing people with histograms of oriented gradients and a linear support vector machine.
/// Takes ClassificationData, gives ClassificationResult (processor).
/// Method: Dalal and Triggs, CVPR 2005.
/// @throws std::invalid_argument  `AreasCount` is negative, or `Areas` is null where some are counted, unless
///     `WholeFrame` is 1
/// @throws cv::Exception  `data` is null while the frame is not empty, a side of the frame is negative, or an area that
///     is searched does not lie inside the frame
QUARRY_API void CreateCVHogSvmHumanClassifier(void** handle, ClassificationOptions* options);

/// Finds objects of one kind in a region of a frame with a cascade of boosted features.
/// Takes ClassificationData, gives ClassificationResult (processor). The factory reads the model. That there is no such
/// file shows in Process.
/// Method: Viola and Jones, CVPR 2001.
/// @throws std::invalid_argument  `Mode` is above 2 or `CascadePath` is null (when created), or `Areas` is null
/// @throws cv::Exception  `CascadePath` is empty or names a file that cannot be parsed (when created); `data` is null
///     while the frame is not empty, the area does not lie inside the frame, or there is no such file (when processing)
QUARRY_API void CreateCVCascadeClassifier(void** handle, ClassificationOptions* options);

/// How far every pixel moved from the previous frame to the current one.
/// Takes OFCData, gives OFCResult (updater). An Update that fails may have begun to write into the result or, over a
/// frame of another size, have ended the buffer of earlier results.
/// Method: Farneback, SCIA 2003.
/// @throws cv::Exception  `data` is not null but the frame is empty
/// @throws std::invalid_argument  the frame has more than 2147483647 pixels
QUARRY_API void CreateCVDenseOpticalFlowCalculator(void** handle, OFCOptions* options);

/// Motion across a line of a motion field: how far its pixels lie from it once they have moved.
/// Takes OFLineData, gives OFLineResult (processor).
/// @throws std::invalid_argument  `ValuesCount` is negative
QUARRY_API void CreateCVOpticalFlowLineProcessor(void** handle, OFLineOptions* options);

/// A rotated rectangle cut out of a frame, upright.
/// Takes RectExtractorData, gives RectExtractorResult (processor).
/// @throws std::invalid_argument  the frame's width is 0, a size is negative, or the `stride` leaves no room for packed
///     rows (3 x width bytes each)
/// @throws cv::Exception  the frame is too large to warp (32767 pixels and more a side); both sizes are written to the
///     standard output first
QUARRY_API void CreateCVRectExtractor(void** handle, RectExtractorOptions* options);

/// The two dominant colours of a person's upper body and the two of the legs, by k-means.
/// Takes KMeanData, gives KMeanResult (processor).
/// Method: Arthur and Vassilvitskii, 2007 (first centres).
/// @throws std::invalid_argument  `Keypoints.Points` is null
/// @throws cv::Exception  `data` is null while the frame is not empty, or torso or legs cover fewer than two pixels
QUARRY_API void CreateCVKMeanColorExtractor(void** handle, KMeanOptions* options);

/// The blobs of a frame that is black everywhere else: outlines with centres of mass.
/// Takes ClustererData, gives ClustererResult (processor).
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty
QUARRY_API void CreateCVClustererContours(void** handle, ClustererOptions* options);

/// A denoised copy of a colour frame, by non-local means with fixed strength.
/// Takes FilterData, gives FilterResult (processor).
/// Method: Buades, Coll and Morel, IPOL 2011.
/// @throws cv::Exception  `data` is null while the frame is not empty, or width and height are both negative
/// @throws std::invalid_argument  `stride` leaves no room for packed rows (3 x width bytes each)
QUARRY_API void CreateCVFastNlMeansDenoisingFilter(void** handle, FilterOptions* options);

/// Where a contour lies with respect to a polygon: inside, outside or across its border.
/// Takes ContourIntersectionProcessorData, gives ContourInstersectionProcessorResult (processor).
/// @throws std::invalid_argument  `TestContour` has no points, or `Points` is null where some are counted
/// @throws cv::Exception  OpenCV refuses the polygon, an empty one included
QUARRY_API void CreateCVContourIntersectionProcessor(void** handle, ContourIntersectionProcessorOptions* options);

/// A grid of the cells that objects occupy in a frame that is black everywhere else.
/// Takes ContourMaskProcessorData, gives ContourMaskProcessorResult (processor). `DisposeResult` leaves the grid in
/// place: the host releases it with DestroyContourMaskProcessorResult (Memory.h).
/// @throws std::invalid_argument  `GridWidth` or `GridHeight` is below 1, or their product above 2147483647
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty
QUARRY_API void CreateCVContourMaskProcessor(void** handle, ContourMaskProcessorOptions* options);

/// Aligns a frame to a layout of five points with the best similarity transform.
/// Takes AffineTransformData, gives TransformResult (processor).
/// Method: Umeyama, IEEE TPAMI 13(4), 1991.
/// Aborts the process when either number of points is not 5.
/// @throws std::invalid_argument  `Points` is null, a size is negative, or the output has more than 2147483647 bytes
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty, or the frame is too large
///     to warp
QUARRY_API void CreateCVAffineTransformProcessor(void** handle, TransformOptions* options);

/// Turns a frame about its centre, and scales it, on a canvas that holds the whole turned frame.
/// Takes RotationTransformData, gives TransformResult (processor).
/// @throws std::invalid_argument  a side of the options' size is negative, or `stride` leaves no room for packed rows
///     (3 x width bytes each)
/// @throws cv::Exception  `data` is null while the size is not empty, or the size or the canvas is empty
QUARRY_API void CreateCVRotationTransformProcessor(void** handle, TransformOptions* options);

/// Sharpness of a frame: the variance of its Laplacian.
/// Takes VoLInputData, gives VoLOutputData (processor).
/// Method: Pech-Pacheco et al., ICPR 2000.
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty
QUARRY_API void CreateCVLaplacianVarianceProcessor(void** handle, ProcessOptions* options);

/// Sharpness of a face: the variance of the Laplacian of a frame that is black outside an ellipse.
/// Takes FaceVoLInputData, gives VoLOutputData (processor).
/// Method: Pech-Pacheco et al., ICPR 2000.
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty, or a half-axis is
///     negative
QUARRY_API void CreateCVFaceLaplacianVarianceProcessor(void** handle, ProcessOptions* options);

/// Follows one rectangle through a stream of frames with a correlation filter.
/// Takes MosseTrackerData, gives MosseTrackerResult (updater). Its state is always NoResult.
/// Method: Bolme et al., CVPR 2010.
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty; or the rectangle is
///     smaller than 2 x 2, and then the tracker stays as it was
/// @throws std::invalid_argument  `TrackerMode` is neither 0 nor 1 (when created)
QUARRY_API void CreateCVMosseTracker(void** handle, MosseTrackerOptions* options);

/// Cosine similarity of two embeddings of 512 values, such as descriptors of faces.
/// Takes EmbeddingData, gives CosineOutputData (processor).
/// @throws std::invalid_argument  an embedding is null
QUARRY_API void CreateCVCosineSimilarity(void** handle, ProcessOptions* options);

/// The flame region of a frame: the largest region of flame colours in CIE L*a*b*.
/// Takes FireInputData, gives FireOutputData (processor).
/// @throws std::invalid_argument  the frame has more than 2147483647 pixels
/// @throws cv::Exception  the frame is empty, `data` is null, or a side of the frame is negative
QUARRY_API void CreateCVPixelwiseFireProcessor(void** handle, ProcessOptions* options);

#ifdef __cplusplus
}
#endif
