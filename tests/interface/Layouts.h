/* The place of every record and field of the interface, by hand: hosts in other languages lay records out by these
 * numbers. Compiled by a C host and by a C++ host, so that both agree. */
#pragma once

#include <stddef.h>
#include <stdio.h>

#include "Quarry/Quarry.h"
#include "Quarry/Records/Unattached.h"

// NOLINTBEGIN(bugprone-sizeof-expression): where a field is a pointer, the width of the pointer is meant
// NOLINTBEGIN(modernize-*): this header is C as well
struct Layout {
    const char* name;
    size_t actualOffset;
    size_t actualWidth;
    size_t offset;
    size_t width;
};

/* clang-format off */
#define RECORD(type, length) {#type, 0, sizeof(type), 0, (length)}
#define FIELD(type, field, offset, width) \
    {#type "." #field, offsetof(type, field), sizeof(((type*)NULL)->field), (offset), (width)}
/* The frame around a record of `length` bytes, in a variable that QUARRY_FRAMED declares. */
#define FRAME(type, length)                   \
    FIELD(Framed##type, Length, 4, 4),        \
    FIELD(Framed##type, Record, 8, (length)), \
    FIELD(Framed##type, Tag, 8 + (length), 4)

typedef QUARRY_FRAMED(ProcessOptions) FramedProcessOptions;
typedef QUARRY_FRAMED(VoLInputData) FramedVoLInputData;
typedef QUARRY_FRAMED(VoLOutputData) FramedVoLOutputData;
typedef QUARRY_FRAMED(BackgroundOptions) FramedBackgroundOptions;
typedef QUARRY_FRAMED(BackgroundData) FramedBackgroundData;
typedef QUARRY_FRAMED(BackgroundResult) FramedBackgroundResult;
typedef QUARRY_FRAMED(ContourMaskProcessorOptions) FramedContourMaskProcessorOptions;
typedef QUARRY_FRAMED(ColorComparingInputData) FramedColorComparingInputData;

static const struct Layout layouts[] = {
    /* shared records */
    RECORD(Image, 32),
        FIELD(Image, data, 0, 8), FIELD(Image, width, 8, 4), FIELD(Image, height, 12, 4), FIELD(Image, stride, 16, 4),
        FIELD(Image, timestamp, 24, 8),
    RECORD(Mask, 16),
        FIELD(Mask, data, 0, 8), FIELD(Mask, width, 8, 4), FIELD(Mask, height, 12, 4),
    RECORD(FloatPoint, 8),
        FIELD(FloatPoint, X, 0, 4), FIELD(FloatPoint, Y, 4, 4),
    RECORD(Contour, 24),
        FIELD(Contour, Points, 0, 8), FIELD(Contour, Count, 8, 4), FIELD(Contour, Area, 12, 4),
        FIELD(Contour, Perimeter, 16, 4),
    RECORD(RelRect, 16),
        FIELD(RelRect, X, 0, 4), FIELD(RelRect, Y, 4, 4), FIELD(RelRect, Width, 8, 4), FIELD(RelRect, Height, 12, 4),
    RECORD(PixelRect, 8),
        FIELD(PixelRect, X, 0, 2), FIELD(PixelRect, Y, 2, 2), FIELD(PixelRect, Width, 4, 2),
        FIELD(PixelRect, Height, 6, 2),
    RECORD(RectArray, 16),
        FIELD(RectArray, Count, 0, 4), FIELD(RectArray, Rects, 8, 8),
        {"an element of RectArray.Rects", 0, sizeof(*((RectArray*)NULL)->Rects), 0, 16},
    RECORD(PointArray, 16),
        FIELD(PointArray, Count, 0, 4), FIELD(PointArray, PointsCount, 0, 4), FIELD(PointArray, Points, 8, 8),
        {"an element of PointArray.Points", 0, sizeof(*((PointArray*)NULL)->Points), 0, 8},
    RECORD(FloatImage, 16),
        FIELD(FloatImage, width, 0, 4), FIELD(FloatImage, height, 4, 4), FIELD(FloatImage, data, 8, 8),
        {"an element of FloatImage.data", 0, sizeof(*((FloatImage*)NULL)->data), 0, 4},
    RECORD(AbsVector, 8),
        FIELD(AbsVector, Dx, 0, 4), FIELD(AbsVector, Dy, 4, 4),
    RECORD(AbsVectorMatrix, 16),
        FIELD(AbsVectorMatrix, width, 0, 4), FIELD(AbsVectorMatrix, height, 4, 4), FIELD(AbsVectorMatrix, data, 8, 8),
        {"an element of AbsVectorMatrix.data", 0, sizeof(*((AbsVectorMatrix*)NULL)->data), 0, 8},
    RECORD(Response, 24),
        FIELD(Response, Weight, 0, 8), FIELD(Response, Rect, 8, 16), FIELD(Response, Rect.X, 8, 4),
        FIELD(Response, Rect.Y, 12, 4), FIELD(Response, Rect.Width, 16, 4), FIELD(Response, Rect.Height, 20, 4),
    RECORD(Cluster, 16),
        FIELD(Cluster, Contour, 0, 8), FIELD(Cluster, CenterX, 8, 4), FIELD(Cluster, CenterY, 12, 4),

    /* sharpness of a frame */
    RECORD(ProcessOptions, 8),
        FIELD(ProcessOptions, Header, 0, 4),
    RECORD(VoLInputData, 40),
        FIELD(VoLInputData, Header, 0, 4), FIELD(VoLInputData, Image, 8, 32), FIELD(VoLInputData, Image.data, 8, 8),
        FIELD(VoLInputData, Image.width, 16, 4), FIELD(VoLInputData, Image.height, 20, 4),
        FIELD(VoLInputData, Image.stride, 24, 4), FIELD(VoLInputData, Image.timestamp, 32, 8),
    RECORD(VoLOutputData, 8),
        FIELD(VoLOutputData, Status, 0, 4), FIELD(VoLOutputData, Variance, 4, 4),

    /* sharpness of a face */
    RECORD(FaceVoLInputData, 48),
        FIELD(FaceVoLInputData, Header, 0, 4), FIELD(FaceVoLInputData, Image, 8, 32),
        FIELD(FaceVoLInputData, FaceX, 40, 2), FIELD(FaceVoLInputData, FaceY, 42, 2),
        FIELD(FaceVoLInputData, FaceWidth, 44, 2), FIELD(FaceVoLInputData, FaceHeight, 46, 2),

    /* absolute difference of two frames */
    RECORD(BinaryImageOperationOptions, 12),
        FIELD(BinaryImageOperationOptions, Header, 0, 4),
    RECORD(BinaryImageOperationData, 72),
        FIELD(BinaryImageOperationData, Header, 0, 4), FIELD(BinaryImageOperationData, FirstImage, 8, 32),
        FIELD(BinaryImageOperationData, SecondImage, 40, 32),
    RECORD(ImageOperationResult, 16),
        FIELD(ImageOperationResult, Status, 0, 4), FIELD(ImageOperationResult, Image, 8, 8),

    /* cosine similarity of two embeddings */
    RECORD(EmbeddingData, 40),
        FIELD(EmbeddingData, Header, 0, 4), FIELD(EmbeddingData, FirstEmbedding, 16, 8),
        FIELD(EmbeddingData, SecondEmbedding, 32, 8),
    RECORD(CosineOutputData, 16),
        FIELD(CosineOutputData, Status, 0, 4), FIELD(CosineOutputData, Similarity, 8, 8),

    /* non-local means denoising */
    RECORD(FilterOptions, 8),
        FIELD(FilterOptions, Header, 0, 4),
    RECORD(FilterData, 40),
        FIELD(FilterData, Header, 0, 4), FIELD(FilterData, Image, 8, 32),
    RECORD(FilterResult, 16),
        FIELD(FilterResult, Status, 0, 4), FIELD(FilterResult, Image, 8, 8),

    /* contour of an object */
    RECORD(ContourCalcingOptions, 16),
        FIELD(ContourCalcingOptions, Header, 0, 4), FIELD(ContourCalcingOptions, ApproximationMethod, 8, 4),
        FIELD(ContourCalcingOptions, SelectionMode, 12, 4),
    RECORD(ContourCalcingInputData, 40),
        FIELD(ContourCalcingInputData, Header, 0, 4), FIELD(ContourCalcingInputData, ObjectMask, 8, 16),
        FIELD(ContourCalcingInputData, ObjectMask.data, 8, 8), FIELD(ContourCalcingInputData, ObjectMask.width, 16, 4),
        FIELD(ContourCalcingInputData, ObjectMask.height, 20, 4), FIELD(ContourCalcingInputData, ObjectRect, 24, 16),
    RECORD(ContourResult, 16),
        FIELD(ContourResult, Status, 0, 4), FIELD(ContourResult, Contour, 8, 8),

    /* grid of occupied cells */
    RECORD(ContourMaskProcessorOptions, 12),
        FIELD(ContourMaskProcessorOptions, Header, 0, 4), FIELD(ContourMaskProcessorOptions, CellFillRate, 4, 4),
        FIELD(ContourMaskProcessorOptions, MinContourAreaRate, 8, 4),
    RECORD(ContourMaskProcessorData, 48),
        FIELD(ContourMaskProcessorData, Header, 0, 4), FIELD(ContourMaskProcessorData, Image, 8, 32),
        FIELD(ContourMaskProcessorData, GridWidth, 40, 4), FIELD(ContourMaskProcessorData, GridHeight, 44, 4),
    RECORD(ContourMaskProcessorResult, 16),
        FIELD(ContourMaskProcessorResult, Status, 0, 4), FIELD(ContourMaskProcessorResult, Mask, 8, 8),

    /* contour against a polygon */
    RECORD(ContourIntersectionProcessorOptions, 8),
        FIELD(ContourIntersectionProcessorOptions, Header, 0, 4),
    RECORD(ContourIntersectionProcessorData, 56),
        FIELD(ContourIntersectionProcessorData, Header, 0, 4),
        FIELD(ContourIntersectionProcessorData, Polygon, 8, 24),
        FIELD(ContourIntersectionProcessorData, Polygon.Points, 8, 8),
        FIELD(ContourIntersectionProcessorData, Polygon.Count, 16, 4),
        FIELD(ContourIntersectionProcessorData, TestContour, 32, 24),
        FIELD(ContourIntersectionProcessorData, TestContour.Points, 32, 8),
        FIELD(ContourIntersectionProcessorData, TestContour.Count, 40, 4),
    RECORD(ContourInstersectionProcessorResult, 8),
        FIELD(ContourInstersectionProcessorResult, Status, 0, 4),
        FIELD(ContourInstersectionProcessorResult, Position, 4, 4),

    /* shape change rate */
    RECORD(ContourRateMeasuringOptions, 12),
        FIELD(ContourRateMeasuringOptions, Header, 0, 4), FIELD(ContourRateMeasuringOptions, MatchMethod, 8, 4),
    RECORD(ContourRateMeasuringInputData, 80),
        FIELD(ContourRateMeasuringInputData, Header, 0, 4),
        FIELD(ContourRateMeasuringInputData, CurrentContour, 8, 24),
        FIELD(ContourRateMeasuringInputData, PreviousContour, 32, 24),
        FIELD(ContourRateMeasuringInputData, FrameWidth, 56, 2),
        FIELD(ContourRateMeasuringInputData, FrameHeight, 58, 2),
        FIELD(ContourRateMeasuringInputData, DefaultRate, 64, 8), FIELD(ContourRateMeasuringInputData, Interval, 72, 8),
    RECORD(ContourRateMeasuringOutputData, 16),
        FIELD(ContourRateMeasuringOutputData, Status, 0, 4), FIELD(ContourRateMeasuringOutputData, Rate, 8, 8),

    /* contour clusters */
    RECORD(ClustererOptions, 12),
        FIELD(ClustererOptions, Header, 0, 4), FIELD(ClustererOptions, OutlinePrecision, 4, 4),
        FIELD(ClustererOptions, MinContourAreaRate, 8, 4),
    RECORD(ClustererData, 40),
        FIELD(ClustererData, Header, 0, 4), FIELD(ClustererData, Image, 8, 32),
    RECORD(ClustererResult, 24),
        FIELD(ClustererResult, Clusters, 8, 8), FIELD(ClustererResult, Count, 16, 4),

    /* rotated rectangle */
    RECORD(RectExtractorOptions, 12),
        FIELD(RectExtractorOptions, Header, 0, 4), FIELD(RectExtractorOptions, Interpolation, 8, 2),
    RECORD(RectExtractorData, 56),
        FIELD(RectExtractorData, Header, 0, 4), FIELD(RectExtractorData, Image, 8, 32),
        FIELD(RectExtractorData, CenterX, 40, 2), FIELD(RectExtractorData, CenterY, 42, 2),
        FIELD(RectExtractorData, Width, 44, 2), FIELD(RectExtractorData, Height, 46, 2),
        FIELD(RectExtractorData, Angle, 48, 8),
    RECORD(RectExtractorResult, 16),
        FIELD(RectExtractorResult, Status, 0, 4), FIELD(RectExtractorResult, Image, 8, 8),

    /* clothing colours */
    RECORD(KMeanOptions, 8),
        FIELD(KMeanOptions, Header, 0, 4),
    RECORD(KMeanData, 56),
        FIELD(KMeanData, Header, 0, 4), FIELD(KMeanData, Image, 8, 32), FIELD(KMeanData, Keypoints, 40, 16),
        FIELD(KMeanData, Keypoints.Points, 48, 8),
    RECORD(KMeanResult, 16),
        FIELD(KMeanResult, Status, 0, 4), FIELD(KMeanResult, Count, 4, 4), FIELD(KMeanResult, Colors, 8, 8),
        {"an element of KMeanResult.Colors", 0, sizeof(*((KMeanResult*)NULL)->Colors), 0, 4},

    /* detectors */
    RECORD(ClassificationOptions, 40),
        FIELD(ClassificationOptions, Header, 0, 4), FIELD(ClassificationOptions, Sensitivity, 4, 4),
        FIELD(ClassificationOptions, MinSize, 8, 8), FIELD(ClassificationOptions, MaxSize, 16, 8),
        FIELD(ClassificationOptions, Mode, 24, 4), FIELD(ClassificationOptions, CascadePath, 32, 8),
    RECORD(ClassificationData, 64),
        FIELD(ClassificationData, Header, 0, 4), FIELD(ClassificationData, Frame, 8, 32),
        FIELD(ClassificationData, WholeFrame, 40, 1), FIELD(ClassificationData, AreasCount, 48, 4),
        FIELD(ClassificationData, Areas, 56, 8),
    RECORD(ClassificationResult, 16),
        FIELD(ClassificationResult, Status, 0, 4), FIELD(ClassificationResult, Count, 4, 4),
        FIELD(ClassificationResult, Responses, 8, 8),
        {"an element of ClassificationResult.Responses", 0, sizeof(*((ClassificationResult*)NULL)->Responses), 0, 24},

    /* colour comparison of two regions */
    RECORD(ColorComparingOptions, 12),
        FIELD(ColorComparingOptions, Header, 0, 4), FIELD(ColorComparingOptions, Reserved, 4, 4),
        FIELD(ColorComparingOptions, CompareMethod, 8, 4),
    RECORD(ColorComparingInputData, 88),
        FIELD(ColorComparingInputData, Header, 0, 4), FIELD(ColorComparingInputData, FirstImage, 8, 32),
        FIELD(ColorComparingInputData, SecondImage, 40, 32), FIELD(ColorComparingInputData, Area, 72, 16),
    RECORD(ColorComparingOutputData, 16),
        FIELD(ColorComparingOutputData, Status, 0, 4), FIELD(ColorComparingOutputData, Similarity, 8, 8),

    /* fire pixels */
    RECORD(FireInputData, 40),
        FIELD(FireInputData, Header, 0, 4), FIELD(FireInputData, Frame, 8, 32),
    RECORD(FireOutputData, 16),
        FIELD(FireOutputData, Status, 0, 4), FIELD(FireOutputData, FireMask, 8, 8),

    /* geometric transforms */
    RECORD(TransformOptions, 16),
        FIELD(TransformOptions, Header, 0, 4), FIELD(TransformOptions, Reserved, 4, 4),
        FIELD(TransformOptions, Width, 8, 4), FIELD(TransformOptions, Height, 12, 4),
    RECORD(AffineTransformData, 72),
        FIELD(AffineTransformData, Header, 0, 4), FIELD(AffineTransformData, Frame, 8, 32),
        FIELD(AffineTransformData, DstPoints, 40, 16), FIELD(AffineTransformData, DstPoints.PointsCount, 40, 4),
        FIELD(AffineTransformData, DstPoints.Points, 48, 8), FIELD(AffineTransformData, SrcPoints, 56, 16),
        FIELD(AffineTransformData, SrcPoints.PointsCount, 56, 4), FIELD(AffineTransformData, SrcPoints.Points, 64, 8),
    RECORD(RotationTransformData, 56),
        FIELD(RotationTransformData, Header, 0, 4), FIELD(RotationTransformData, Frame, 8, 32),
        FIELD(RotationTransformData, Angle, 40, 8), FIELD(RotationTransformData, Scale, 48, 8),
    RECORD(TransformResult, 16),
        FIELD(TransformResult, Status, 0, 4), FIELD(TransformResult, ResultImage, 8, 8),

    /* motion across a line */
    RECORD(OFLineOptions, 8),
        FIELD(OFLineOptions, Header, 0, 4),
    RECORD(OFLineData, 48),
        FIELD(OFLineData, Header, 0, 4), FIELD(OFLineData, FlowMatrix, 16, 8), FIELD(OFLineData, LineStartX, 24, 4),
        FIELD(OFLineData, LineStartY, 28, 4), FIELD(OFLineData, LineEndX, 32, 4), FIELD(OFLineData, LineEndY, 36, 4),
        FIELD(OFLineData, ValuesCount, 40, 4),
    RECORD(OFLineResult, 24),
        FIELD(OFLineResult, Values, 8, 8), FIELD(OFLineResult, ValuesCount, 16, 4),

    /* background model */
    RECORD(BackgroundOptions, 20),
        FIELD(BackgroundOptions, Header, 0, 4), FIELD(BackgroundOptions, Sensitivity, 4, 4),
        FIELD(BackgroundOptions, HistoryLength, 8, 4), FIELD(BackgroundOptions, AdaptationTime, 12, 4),
        FIELD(BackgroundOptions, LearningSpeedup, 16, 4),
    RECORD(BackgroundData, 48),
        FIELD(BackgroundData, Header, 0, 4), FIELD(BackgroundData, Image, 8, 32),
        FIELD(BackgroundData, Image.data, 8, 8), FIELD(BackgroundData, Image.width, 16, 4),
        FIELD(BackgroundData, Image.height, 20, 4), FIELD(BackgroundData, Image.stride, 24, 4),
        FIELD(BackgroundData, Image.timestamp, 32, 8),
    RECORD(BackgroundResult, 32),
        FIELD(BackgroundResult, Status, 0, 4), FIELD(BackgroundResult, ForegroundMask, 8, 8),
        FIELD(BackgroundResult, BackgroundImage, 16, 8), FIELD(BackgroundResult, ReservedImage, 24, 8),

    /* dense optical flow */
    RECORD(OFCOptions, 16),
        FIELD(OFCOptions, Header, 0, 4), FIELD(OFCOptions, Detail, 4, 4), FIELD(OFCOptions, Quality, 12, 4),
    RECORD(OFCData, 40),
        FIELD(OFCData, Header, 0, 4), FIELD(OFCData, Image, 8, 32),
    RECORD(OFCResult, 16),
        FIELD(OFCResult, Status, 0, 4), FIELD(OFCResult, FlowMatrix, 8, 8),

    /* correlation tracker */
    RECORD(MosseTrackerOptions, 16),
        FIELD(MosseTrackerOptions, Header, 0, 4), FIELD(MosseTrackerOptions, TrackerMode, 12, 4),
    RECORD(MosseTrackerData, 48),
        FIELD(MosseTrackerData, Header, 0, 4), FIELD(MosseTrackerData, Image, 8, 32),
        FIELD(MosseTrackerData, InitialRect, 40, 8), FIELD(MosseTrackerData, InitialRect.X, 40, 2),
        FIELD(MosseTrackerData, InitialRect.Y, 42, 2), FIELD(MosseTrackerData, InitialRect.Width, 44, 2),
        FIELD(MosseTrackerData, InitialRect.Height, 46, 2),
    RECORD(MosseTrackerResult, 16),
        FIELD(MosseTrackerResult, Status, 0, 4), FIELD(MosseTrackerResult, TargetRect, 4, 8),
        FIELD(MosseTrackerResult, TargetRect.X, 4, 2), FIELD(MosseTrackerResult, TargetRect.Y, 6, 2),
        FIELD(MosseTrackerResult, TargetRect.Width, 8, 2), FIELD(MosseTrackerResult, TargetRect.Height, 10, 2),
        FIELD(MosseTrackerResult, Found, 12, 1), FIELD(MosseTrackerResult, Zero, 13, 3),

    /* records of no operation */
    RECORD(FloatImageUpdaterResult, 16),
        FIELD(FloatImageUpdaterResult, Status, 0, 4), FIELD(FloatImageUpdaterResult, Image, 8, 8),
    RECORD(DepthMapCalcResult, 16),
        FIELD(DepthMapCalcResult, Status, 0, 4), FIELD(DepthMapCalcResult, DepthMap, 8, 8),
    RECORD(SODResult, 32),
        FIELD(SODResult, Status, 0, 4), FIELD(SODResult, Points, 8, 8), FIELD(SODResult, Count, 16, 4),
        FIELD(SODResult, Mask, 24, 8),
        {"an element of SODResult.Points", 0, sizeof(*((SODResult*)NULL)->Points), 0, 8},

    /* frames, around records of every alignment */
    FRAME(ProcessOptions, 8),
    FRAME(VoLInputData, 40),
    FRAME(VoLOutputData, 8),
    FRAME(ContourMaskProcessorOptions, 12),
    FRAME(BackgroundOptions, 20),
    FRAME(BackgroundData, 48),
    FRAME(BackgroundResult, 32),
    FRAME(ColorComparingInputData, 88),
};
/* clang-format on */

/* A number of the interface that is written out in the headers. */
struct Constant {
    const char* name;
    unsigned long actual;
    unsigned long value;
};

static const struct Constant constants[] = {
    {"QUARRY_OPTIONS_TAG", QUARRY_OPTIONS_TAG, 252645135UL},
    {"QUARRY_INPUT_TAG", QUARRY_INPUT_TAG, 284225776UL},
    {"QUARRY_RESULT_TAG", QUARRY_RESULT_TAG, 536805376UL},
    {"QUARRY_MAX_RECORD_LENGTH", QUARRY_MAX_RECORD_LENGTH, 120UL},
    {"NoResult", (unsigned long)NoResult, 0UL},
    {"Accumulating", (unsigned long)Accumulating, 1UL},
    {"Ready", (unsigned long)Ready, 2UL},
};

/* Prints what differs from the tables and returns how many entries do. */
static int CountWrongLayouts(void) {
    int wrong = 0;
    for (size_t i = 0; i < sizeof(layouts) / sizeof(layouts[0]); ++i) {
        const struct Layout* const layout = &layouts[i];
        if (layout->actualOffset != layout->offset || layout->actualWidth != layout->width) {
            printf("%s: %zu bytes at %zu, expected %zu at %zu\n", layout->name, layout->actualWidth,
                   layout->actualOffset, layout->width, layout->offset);
            ++wrong;
        }
    }
    for (size_t i = 0; i < sizeof(constants) / sizeof(constants[0]); ++i) {
        if (constants[i].actual != constants[i].value) {
            printf("%s: %lu, expected %lu\n", constants[i].name, constants[i].actual, constants[i].value);
            ++wrong;
        }
    }
    return wrong;
}
// NOLINTEND(modernize-*)
// NOLINTEND(bugprone-sizeof-expression)
