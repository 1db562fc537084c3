/// @file
/// Records of the dominant clothing colours (KMeanColorExtractor).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read.
typedef struct KMeanOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
} KMeanOptions;

QUARRY_LAYOUT_SIZE(KMeanOptions, 8);
QUARRY_LAYOUT_FIELD(KMeanOptions, Header, 0);
QUARRY_LAYOUT_FIELD(KMeanOptions, Reserved, 4);

/// A frame and the body in it.
typedef struct KMeanData {
    uint32_t Header;       ///< the host's to use; not read
    struct Image Image;    ///< 8-bit, 3 channels, rows packed; `stride` and `timestamp` are not read
    PointArray Keypoints;  ///< 17 points in the COCO body order, relative; `Count` is not read
} KMeanData;

QUARRY_LAYOUT_SIZE(KMeanData, 56);
QUARRY_LAYOUT_FIELD(KMeanData, Header, 0);
QUARRY_LAYOUT_FIELD(KMeanData, Image, 8);
QUARRY_LAYOUT_FIELD(KMeanData, Keypoints, 40);

/// The colours; give them back with `DisposeResult`.
typedef struct KMeanResult {
    int32_t Status;  ///< always 0
    int32_t Count;   ///< number of colours, always 4
    /// `Count` x 3 floats, 0..1, channels in reverse order: torso first and second, legs first and second
    float* Colors;
} KMeanResult;

QUARRY_LAYOUT_SIZE(KMeanResult, 16);
QUARRY_LAYOUT_FIELD(KMeanResult, Status, 0);
QUARRY_LAYOUT_FIELD(KMeanResult, Count, 4);
QUARRY_LAYOUT_FIELD(KMeanResult, Colors, 8);
