/// @file
/// Records of the frame sharpness (VarianceOfLaplacianProcessor).
#pragma once

#include "Quarry/Records/ProcessOptions.h"
#include "Quarry/SharedRecords.h"

/// A frame to measure.
typedef struct VoLInputData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
} VoLInputData;

QUARRY_LAYOUT_SIZE(VoLInputData, 40);
QUARRY_LAYOUT_FIELD(VoLInputData, Header, 0);
QUARRY_LAYOUT_FIELD(VoLInputData, Image, 8);

/// The sharpness; holds no buffer.
typedef struct VoLOutputData {
    int32_t Status;  ///< always 0
    float Variance;  ///< variance of the Laplacian of the grey frame, squared grey levels, 0 or more
} VoLOutputData;

QUARRY_LAYOUT_SIZE(VoLOutputData, 8);
QUARRY_LAYOUT_FIELD(VoLOutputData, Status, 0);
QUARRY_LAYOUT_FIELD(VoLOutputData, Variance, 4);
