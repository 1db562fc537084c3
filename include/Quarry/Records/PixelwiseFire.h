/// @file
/// Records of the fire pixels (PixelwiseFireProcessor).
#pragma once

#include "Quarry/Records/ProcessOptions.h"
#include "Quarry/SharedRecords.h"

/// A frame to search.
typedef struct FireInputData {
    uint32_t Header;  ///< the host's to use; not read
    Image Frame;      ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
} FireInputData;

QUARRY_LAYOUT_SIZE(FireInputData, 40);
QUARRY_LAYOUT_FIELD(FireInputData, Header, 0);
QUARRY_LAYOUT_FIELD(FireInputData, Frame, 8);

/// The fire; give it back with `DisposeResult`.
typedef struct FireOutputData {
    int32_t Status;  ///< always 0
    Mask* FireMask;  ///< of the frame's size: 255 flame, 0 none
} FireOutputData;

QUARRY_LAYOUT_SIZE(FireOutputData, 16);
QUARRY_LAYOUT_FIELD(FireOutputData, Status, 0);
QUARRY_LAYOUT_FIELD(FireOutputData, FireMask, 8);
