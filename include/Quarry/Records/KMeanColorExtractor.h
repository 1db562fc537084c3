/// @file
/// Records of the dominant clothing colours (KMeanColorExtractor).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read.
typedef struct KMeanOptions {
    uint32_t Header;
    uint32_t Reserved;  ///< not read
} KMeanOptions;

QUARRY_LAYOUT_SIZE(KMeanOptions, 8);
QUARRY_LAYOUT_FIELD(KMeanOptions, Header, 0);
QUARRY_LAYOUT_FIELD(KMeanOptions, Reserved, 4);

/// A frame and the body in it.
typedef struct KMeanData {
    uint32_t Header;
    struct Image Image;    ///< 8-bit, 3 channels, rows packed; `stride` and `timestamp` are not read
    PointArray Keypoints;  ///< at least 17 points in relative coordinates, in the COCO body order; `Count` is not read
} KMeanData;

QUARRY_LAYOUT_SIZE(KMeanData, 56);
QUARRY_LAYOUT_FIELD(KMeanData, Header, 0);
QUARRY_LAYOUT_FIELD(KMeanData, Image, 8);
QUARRY_LAYOUT_FIELD(KMeanData, Keypoints, 40);

/// The colours; give them back with `DisposeResult`.
typedef struct KMeanResult {
    int32_t Status;  ///< always 0
    int32_t Count;   ///< number of colours, always 4
    float* Colors;   ///< `Count` x 3 floats, 0..1: torso first and second, legs first and second
} KMeanResult;

QUARRY_LAYOUT_SIZE(KMeanResult, 16);
QUARRY_LAYOUT_FIELD(KMeanResult, Status, 0);
QUARRY_LAYOUT_FIELD(KMeanResult, Count, 4);
QUARRY_LAYOUT_FIELD(KMeanResult, Colors, 8);
