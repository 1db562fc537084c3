/// @file
/// Records of the contour clusters (ClustererContours).
#pragma once

#include "Quarry/SharedRecords.h"

/// How blobs are traced and which are kept.
typedef struct ClustererOptions {
    uint32_t Header;           ///< the host's to use; not read
    float OutlinePrecision;    ///< above 0.5 every border pixel is kept, else Teh-Chin chains
    float MinContourAreaRate;  ///< 0..1: smallest blob that is kept, share of the frame's area
} ClustererOptions;

QUARRY_LAYOUT_SIZE(ClustererOptions, 12);
QUARRY_LAYOUT_FIELD(ClustererOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ClustererOptions, OutlinePrecision, 4);
QUARRY_LAYOUT_FIELD(ClustererOptions, MinContourAreaRate, 8);

/// A frame with blobs.
typedef struct ClustererData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit R, G, B, rows packed; `stride` and `timestamp` are not read
} ClustererData;

QUARRY_LAYOUT_SIZE(ClustererData, 40);
QUARRY_LAYOUT_FIELD(ClustererData, Header, 0);
QUARRY_LAYOUT_FIELD(ClustererData, Image, 8);

/// The clusters; give them back with `DisposeResult`.
typedef struct ClustererResult {
    uint64_t Unwritten;  ///< the library leaves these bytes as they are
    Cluster* Clusters;   ///< `Count` clusters, in the order in which they are found
    int32_t Count;       ///< number of clusters
} ClustererResult;

QUARRY_LAYOUT_SIZE(ClustererResult, 24);
QUARRY_LAYOUT_FIELD(ClustererResult, Unwritten, 0);
QUARRY_LAYOUT_FIELD(ClustererResult, Clusters, 8);
QUARRY_LAYOUT_FIELD(ClustererResult, Count, 16);
