/// @file
/// Records of the frame rotation (RotationTransformProcessor); options and result are in Transform.h.
#pragma once

#include "Quarry/Records/Transform.h"

/// A frame and how to turn it.
typedef struct RotationTransformData {
    uint32_t Header;  ///< the host's to use; not read
    /// 8-bit, 3 channels, rows packed, taken to be of the options' size; `stride` and `timestamp` go to the
    /// result
    Image Frame;
    double Angle;  ///< degrees, positive turns counter-clockwise
    double Scale;  ///< factor; changes the picture, not the canvas
} RotationTransformData;

QUARRY_LAYOUT_SIZE(RotationTransformData, 56);
QUARRY_LAYOUT_FIELD(RotationTransformData, Header, 0);
QUARRY_LAYOUT_FIELD(RotationTransformData, Frame, 8);
QUARRY_LAYOUT_FIELD(RotationTransformData, Angle, 40);
QUARRY_LAYOUT_FIELD(RotationTransformData, Scale, 48);
