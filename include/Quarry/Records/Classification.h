/// @file
/// Records of the detectors (CascadeClassifier, HogSvmHumanClassifier).
#pragma once

#include "Quarry/SharedRecords.h"

/// What a detector looks for.
typedef struct ClassificationOptions {
    uint32_t Header;
    float Sensitivity;  ///< people detector only: 0..1, higher searches finer and slower
    double MinSize;     ///< cascade: smallest side in pixels, negative none; people: fraction of the frame's height
    double MaxSize;     ///< cascade: largest side in pixels, negative none; people: fraction of the frame's height
    uint32_t Mode;      ///< cascade only: preset 0, 1 or 2
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
    uint32_t Header;
    Image Frame;           ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
    uint8_t WholeFrame;    ///< people detector only: 1 searches the whole frame
    uint8_t Reserved[7];   ///< not read
    int32_t AreasCount;    ///< people detector only: number of areas
    const RelRect* Areas;  ///< search areas; the cascade reads the first alone
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
    int32_t Status;       ///< always 0
    int32_t Count;        ///< number of detections
    Response* Responses;  ///< `Count` detections; null when there are none
} ClassificationResult;

QUARRY_LAYOUT_SIZE(ClassificationResult, 16);
QUARRY_LAYOUT_FIELD(ClassificationResult, Status, 0);
QUARRY_LAYOUT_FIELD(ClassificationResult, Count, 4);
QUARRY_LAYOUT_FIELD(ClassificationResult, Responses, 8);
