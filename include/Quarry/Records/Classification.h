/// @file
/// Records of the detectors (CascadeClassifier, HogSvmHumanClassifier).
#pragma once

#include "Quarry/SharedRecords.h"

/// What a detector looks for.
typedef struct ClassificationOptions {
    uint32_t Header;  ///< the host's to use; not read
    /// people only: 0..1, in steps at 0.25, 0.5 and 0.75; a higher one searches finer and slower
    float Sensitivity;
    /// cascade: smallest side in pixels, negative for none; people: share of the frame's height
    double MinSize;
    /// cascade: largest side in pixels, negative for none; people: share of the frame's height
    double MaxSize;
    /// cascade only: 0 needs 6 overlapping hits, 1 needs 2, 2 needs 3 (and with models of OpenCV 1 finds the
    /// biggest object alone)
    uint32_t Mode;
    const char* CascadePath;  ///< cascade only: model file; read by the factory alone
} ClassificationOptions;

QUARRY_LAYOUT_SIZE(ClassificationOptions, 40);
QUARRY_LAYOUT_FIELD(ClassificationOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ClassificationOptions, Sensitivity, 4);
QUARRY_LAYOUT_FIELD(ClassificationOptions, MinSize, 8);
QUARRY_LAYOUT_FIELD(ClassificationOptions, MaxSize, 16);
QUARRY_LAYOUT_FIELD(ClassificationOptions, Mode, 24);
QUARRY_LAYOUT_FIELD(ClassificationOptions, CascadePath, 32);

/// A frame and where to look in it.
typedef struct ClassificationData {
    uint32_t Header;       ///< the host's to use; not read
    Image Frame;           ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
    uint8_t WholeFrame;    ///< people only: 1 searches the whole frame, whatever the areas
    uint8_t Reserved[7];   ///< not read
    int32_t AreasCount;    ///< people only: number of areas, 0 or more
    const RelRect* Areas;  ///< where to search, inside the frame; the cascade reads the first alone
} ClassificationData;

QUARRY_LAYOUT_SIZE(ClassificationData, 64);
QUARRY_LAYOUT_FIELD(ClassificationData, Header, 0);
QUARRY_LAYOUT_FIELD(ClassificationData, Frame, 8);
QUARRY_LAYOUT_FIELD(ClassificationData, WholeFrame, 40);
QUARRY_LAYOUT_FIELD(ClassificationData, Reserved, 41);
QUARRY_LAYOUT_FIELD(ClassificationData, AreasCount, 48);
QUARRY_LAYOUT_FIELD(ClassificationData, Areas, 56);

/// The detections; give them back with `DisposeResult`.
typedef struct ClassificationResult {
    int32_t Status;  ///< always 0
    int32_t Count;   ///< number of detections
    /// `Count` detections, null when there are none; people: relative to the frame, cascade: to the area
    Response* Responses;
} ClassificationResult;

QUARRY_LAYOUT_SIZE(ClassificationResult, 16);
QUARRY_LAYOUT_FIELD(ClassificationResult, Status, 0);
QUARRY_LAYOUT_FIELD(ClassificationResult, Count, 4);
QUARRY_LAYOUT_FIELD(ClassificationResult, Responses, 8);
