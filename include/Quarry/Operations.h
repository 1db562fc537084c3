/// @file
/// The operations of the library, one row each. What lists them expands this table, in C, in C++ and in CMake: the
/// factories, the guard, the exported symbols, the catalogue of the command, the tests that hold for every operation.
///
/// Columns:
///
/// 1. Name: the public name. The class of Host.hpp and of the Python package has it; the page of the documentation, the
///    entry of the catalogue and the section of the demo are called by it, in words with hyphens.
/// 2. Factory: the exported function that makes a handle.
/// 3. Options, Input, Result: the records that its calls exchange.
/// 4. Kind: Processor (Process, DisposeResult) or Updater (Update, GetUpdateResult).
/// 5. Handle: the class of the handle, in the header of that name in Quarry.OpenCV/.
/// 6. Source: the algorithm's files: its header in Records/, its source, test, benchmark and fuzz target.
/// 7. Verb: what `quarry VERB` shows it on the command line, as a string.
///
/// Expand it with a macro that takes a row; `...` takes the columns that are not needed:
///
///     #define PRINT_NAME(Name, ...) puts(#Name);
///     QUARRY_OPERATIONS(PRINT_NAME)
#pragma once

// Laid out by hand: a row begins with the public name, its records stand on a line of their own.
// clang-format off
// OPERATION(Name, Factory,
//     Options, Input, Result,
//     Kind, Handle, Source, Verb)
#define QUARRY_OPERATIONS(OPERATION) \
    OPERATION(VarianceOfLaplacian, CreateCVLaplacianVarianceProcessor,                                              \
        ProcessOptions, VoLInputData, VoLOutputData,                                                                \
        Processor, CVLaplacianVarianceProcessor, VarianceOfLaplacian, "sharpness")                                  \
    OPERATION(FaceVarianceOfLaplacian, CreateCVFaceLaplacianVarianceProcessor,                                      \
        ProcessOptions, FaceVoLInputData, VoLOutputData,                                                            \
        Processor, CVFaceLaplacianVarianceProcessor, FaceVarianceOfLaplacian, "sharpness")                          \
    OPERATION(ImageSubtractor, CreateCVImageAbsSubtractor,                                                          \
        BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult,                                \
        Processor, CVImageAbsSubtractor, ImageSubtractor, "diff")                                                   \
    OPERATION(CosineSimilarity, CreateCVCosineSimilarity,                                                           \
        ProcessOptions, EmbeddingData, CosineOutputData,                                                            \
        Processor, CVCosineSimilarity, CosineSimilarity, "similarity")                                              \
    OPERATION(FastNlMeansDenoising, CreateCVFastNlMeansDenoisingFilter,                                             \
        FilterOptions, FilterData, FilterResult,                                                                    \
        Processor, CVFastNlMeansDenoisingFilter, FastNlMeansDenoisingFilter, "denoise")                             \
    OPERATION(BackgroundModel, CreateCVBackgroundModel,                                                             \
        BackgroundOptions, BackgroundData, BackgroundResult,                                                        \
        Updater, CVBackgroundUpdater, BackgroundUpdating, "background")                                             \
    OPERATION(MosseTracker, CreateCVMosseTracker,                                                                   \
        MosseTrackerOptions, MosseTrackerData, MosseTrackerResult,                                                  \
        Updater, CVMosseTrackerUpdater, MosseTracker, "track")                                                      \
    OPERATION(DenseOpticalFlow, CreateCVDenseOpticalFlowCalculator,                                                 \
        OFCOptions, OFCData, OFCResult,                                                                             \
        Updater, CVDenseOpticalFlowUpdater, DenseOpticalFlowCalculator, "flow")                                     \
    OPERATION(OpticalFlowLine, CreateCVOpticalFlowLineProcessor,                                                    \
        OFLineOptions, OFLineData, OFLineResult,                                                                    \
        Processor, CVOpticalFlowLineInvoker, OpticalFlowLineProcessor, "flow")                                      \
    OPERATION(ObjectContour, CreateCVContourCalculator,                                                             \
        ContourCalcingOptions, ContourCalcingInputData, ContourResult,                                              \
        Processor, CVContourProcessor, ContourCalcingProcessor, "contours")                                         \
    OPERATION(ContourGrid, CreateCVContourMaskProcessor,                                                            \
        ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult,                          \
        Processor, CVContourMaskProcessor, ContourMaskProcessorDC, "occupancy")                                     \
    OPERATION(ContourClusters, CreateCVClustererContours,                                                           \
        ClustererOptions, ClustererData, ClustererResult,                                                           \
        Processor, CVClustererContours, ClustererContours, "clusters")                                              \
    OPERATION(ContourIntersection, CreateCVContourIntersectionProcessor,                                            \
        ContourIntersectionProcessorOptions, ContourIntersectionProcessorData, ContourInstersectionProcessorResult, \
        Processor, CVContourIntersectionProcessor, ContourIntersectionProcessorPT, "inside")                        \
    OPERATION(ContourRate, CreateCVContourRateCalculator,                                                           \
        ContourRateMeasuringOptions, ContourRateMeasuringInputData, ContourRateMeasuringOutputData,                 \
        Processor, CVContourComparator, ContourRateMeasuringProcessor, "shape-rate")                                \
    OPERATION(RectExtractor, CreateCVRectExtractor,                                                                 \
        RectExtractorOptions, RectExtractorData, RectExtractorResult,                                               \
        Processor, CVRectExtractorInvoker, RectExtractor, "rect")                                                   \
    OPERATION(ClothingColors, CreateCVKMeanColorExtractor,                                                          \
        KMeanOptions, KMeanData, KMeanResult,                                                                       \
        Processor, CVKMeanColorExtractorInvoker, KMeanColorExtractor, "clothing")                                   \
    OPERATION(CascadeDetector, CreateCVCascadeClassifier,                                                           \
        ClassificationOptions, ClassificationData, ClassificationResult,                                            \
        Processor, CVCascadeClassifier, CascadeClassifier, "detect")                                                \
    OPERATION(PeopleDetector, CreateCVHogSvmHumanClassifier,                                                        \
        ClassificationOptions, ClassificationData, ClassificationResult,                                            \
        Processor, CVHogSvmClassifier, HogSvmHumanClassifier, "people")                                             \
    OPERATION(ColorComparison, CreateCVColorComparator,                                                             \
        ColorComparingOptions, ColorComparingInputData, ColorComparingOutputData,                                   \
        Processor, CVColorProcessor, ColorComparingProcessor, "colours")                                            \
    OPERATION(FirePixels, CreateCVPixelwiseFireProcessor,                                                           \
        ProcessOptions, FireInputData, FireOutputData,                                                              \
        Processor, CVPixelwiseFireProcessor, PixelwiseFire, "fire")                                                 \
    OPERATION(SimilarityTransform, CreateCVAffineTransformProcessor,                                                \
        TransformOptions, AffineTransformData, TransformResult,                                                     \
        Processor, CVAffineTransformProcessor, AffineTransformProcessor, "align")                                   \
    OPERATION(RotationTransform, CreateCVRotationTransformProcessor,                                                \
        TransformOptions, RotationTransformData, TransformResult,                                                   \
        Processor, CVRotationTransformProcessor, RotationTransformProcessor, "rotate")
// clang-format on
