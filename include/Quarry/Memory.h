/// @file
/// The functions with which the library allocates and releases records and their buffers (C++).
///
/// A host rarely needs them: `DisposeResult` and the updaters release the results. They serve hosts that build input
/// records (masks, contours, motion fields) or keep a result longer than its handle.
///
/// - A `Create...` function that returns a pointer gives the record and its buffers to the caller, who releases both
///   with the `Destroy...` function of the same name. One that returns a record by value gives only the buffers.
/// - Products such as `width * height` are computed in 32 bits. A negative count or product and a lack of memory throw
///   `std::bad_alloc`; nothing stays allocated then.
/// - Every `Destroy...` function accepts null. One that takes a reference to a pointer releases the record and its
///   buffers and sets the pointer to null, unless its comment says otherwise. One that takes a plain pointer releases
///   the buffers and sets the record's pointers to null, but leaves the record to its owner.
/// - Buffers are not cleared unless the function's comment says so.
#pragma once

#include "Quarry/Export.h"
#include "Quarry/Records/BackgroundUpdating.h"
#include "Quarry/Records/Classification.h"
#include "Quarry/Records/ClustererContours.h"
#include "Quarry/Records/ContourCalcingProcessor.h"
#include "Quarry/Records/ContourMaskProcessorDC.h"
#include "Quarry/Records/DenseOpticalFlowCalculator.h"
#include "Quarry/Records/FastNlMeansDenoisingFilter.h"
#include "Quarry/Records/ImageSubtractor.h"
#include "Quarry/Records/KMeanColorExtractor.h"
#include "Quarry/Records/OpticalFlowLineProcessor.h"
#include "Quarry/Records/PixelwiseFire.h"
#include "Quarry/Records/RectExtractor.h"
#include "Quarry/Records/Transform.h"
#include "Quarry/Records/Unattached.h"
#include "Quarry/SharedRecords.h"

/// @name Shared records
/// @{

/// `data` has `height * stride` bytes.
QUARRY_API Image* CreateImage(int width, int height, int stride, unsigned long long timestamp);
QUARRY_API void DestroyImage(Image*& image);

/// `data` has `width * height` bytes.
QUARRY_API Mask* CreateMask(int width, int height);
QUARRY_API void DestroyMask(Mask*& mask);

/// `Area` and `Perimeter` are 0.
QUARRY_API Contour* CreateContour(int count);
QUARRY_API void DestroyContour(Contour*& contour);

QUARRY_API RectArray* CreateRectArray(int count);
QUARRY_API void DestroyRectArray(RectArray*& array);

QUARRY_API PointArray* CreatePointArray(int count);
QUARRY_API void DestroyPointArray(PointArray*& array);

/// The pixels are 0.
QUARRY_API FloatImage* CreateFloatImage(int width, int height);
QUARRY_API void DestroyFloatImage(FloatImage*& image);

/// The displacements are 0.
QUARRY_API AbsVectorMatrix* CreateAbsVectorMatrix(int width, int height);
QUARRY_API void DestroyAbsVectorMatrix(AbsVectorMatrix*& matrix);

/// The centre is (0, 0); the contour has `count` points. The caller releases the record itself with `delete`.
QUARRY_API Cluster* CreateCluster(int count);
/// Destroys only the cluster's contour: clusters live in arrays, so the record stays, and `cluster` still points to it.
QUARRY_API void DestroyCluster(Cluster*& cluster);

/// Fills `*out`: `a` becomes `X`, `b` `Y`, `c` `Height` and `d` `Width`. This order is part of the interface.
/// @throws std::invalid_argument  `out` is null
QUARRY_API void CreateResponse(float a, float b, float c, float d, double weight, Response* out);
/// Releases the record itself, which must come from `new`.
QUARRY_API void DestroyResponse(Response* response);

/// @}
/// @name Result records of processors
/// `Status` is 0.
/// @{

QUARRY_API ImageOperationResult CreateImageOperationResult(int width, int height, int stride,
                                                           unsigned long long timestamp);
QUARRY_API void DestroyImageOperationResult(ImageOperationResult* result);

QUARRY_API FilterResult CreateFilterResult(int width, int height, int stride, unsigned long long timestamp);
QUARRY_API void DestroyFilterResult(FilterResult* result);

QUARRY_API TransformResult CreateTransformResult(int width, int height, int stride, unsigned long long timestamp);
QUARRY_API void DestroyTransformResult(TransformResult* result);

QUARRY_API RectExtractorResult CreateRectExtractorResult(int width, int height, int stride,
                                                         unsigned long long timestamp);
QUARRY_API void DestroyRectExtractorResult(RectExtractorResult* result);

QUARRY_API ContourMaskProcessorResult CreateContourMaskProcessorResult(int width, int height);
QUARRY_API void DestroyContourMaskProcessorResult(ContourMaskProcessorResult* result);

QUARRY_API FireOutputData CreateFireOutputData(int width, int height);
QUARRY_API void DestroyFireOutputData(FireOutputData* result);

QUARRY_API ContourResult CreateContourResult(int count);
QUARRY_API void DestroyContourResult(ContourResult* result);

/// `Responses` is null when `count` is 0.
QUARRY_API ClassificationResult CreateClassificationResult(int count);
/// Copies `rects[i]` into the `Rect` of response i; the weights are not set.
/// @throws std::invalid_argument  `rects` is null while `count` is not 0
QUARRY_API ClassificationResult CreateClassificationResult(int count, RelRect* rects);
/// Releases the array only if `Count` is not 0, and sets `result` to null.
QUARRY_API void DestroyClassificationResult(ClassificationResult*& result);

/// `Colors` has three floats per colour.
QUARRY_API KMeanResult CreateKMeanResult(int count);
QUARRY_API void DestroyKMeanResult(KMeanResult* result);

/// The clusters are not set: set the contour of each before you destroy the result. `Unwritten` is not set either.
QUARRY_API ClustererResult CreateClustererResult(int count);
QUARRY_API void DestroyClustererResult(ClustererResult* result);

/// The values are 0. `Unwritten` is not set.
QUARRY_API OFLineResult CreateOFLineResult(int count);
QUARRY_API void DestroyOFLineResult(OFLineResult* result);

QUARRY_API DepthMapCalcResult CreateDepthMapCalcResult(int width, int height);
QUARRY_API void DestroyDepthMapCalcResult(DepthMapCalcResult* result);

/// @}
/// @name Result records of updaters
/// `Status` is 0.
/// @{

/// The mask has `width * height` bytes; both images are made like those of CreateImage.
QUARRY_API BackgroundResult* CreateBackgroundResult(int width, int height, int stride, unsigned long long timestamp);
QUARRY_API void DestroyBackgroundResult(BackgroundResult*& result);

/// The displacements are 0.
QUARRY_API OFCResult* CreateOFCResult(int width, int height);
QUARRY_API void DestroyOFCResult(OFCResult*& result);

/// The pixels are 0.
QUARRY_API FloatImageUpdaterResult* CreateFloatImageUpdaterResult(int width, int height);
QUARRY_API void DestroyFloatImageUpdaterResult(FloatImageUpdaterResult*& result);

QUARRY_API SODResult* CreateSODResult(int width, int height, int count);
QUARRY_API void DestroySODResult(SODResult*& result);

/// @}
