/// @file
/// Records of the face sharpness (FaceVarianceOfLaplacianProcessor); the result is a VoLOutputData.
#pragma once

#include "Quarry/Records/VarianceOfLaplacian.h"

/// A frame and the ellipse to measure in it.
typedef struct FaceVoLInputData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
    int16_t FaceX;       ///< centre of the ellipse, column in pixels
    int16_t FaceY;       ///< centre of the ellipse, row in pixels
    int16_t FaceWidth;   ///< half-axis along x, pixels, 0 or more
    int16_t FaceHeight;  ///< half-axis along y, pixels, 0 or more
} FaceVoLInputData;

QUARRY_LAYOUT_SIZE(FaceVoLInputData, 48);
QUARRY_LAYOUT_FIELD(FaceVoLInputData, Header, 0);
QUARRY_LAYOUT_FIELD(FaceVoLInputData, Image, 8);
QUARRY_LAYOUT_FIELD(FaceVoLInputData, FaceX, 40);
QUARRY_LAYOUT_FIELD(FaceVoLInputData, FaceY, 42);
QUARRY_LAYOUT_FIELD(FaceVoLInputData, FaceWidth, 44);
QUARRY_LAYOUT_FIELD(FaceVoLInputData, FaceHeight, 46);
