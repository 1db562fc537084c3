/// @file
/// Records of the similarity alignment (AffineTransformProcessor); options and result are in Transform.h.
#pragma once

#include "Quarry/Records/Transform.h"

/// A frame and the point pairs to align.
typedef struct AffineTransformData {
    uint32_t Header;       ///< the host's to use; not read
    Image Frame;           ///< 8-bit, 3 channels, rows packed; `timestamp` goes to the result
    PointArray DstPoints;  ///< 5 points, in output pixels
    PointArray SrcPoints;  ///< 5 points, in frame pixels
} AffineTransformData;

QUARRY_LAYOUT_SIZE(AffineTransformData, 72);
QUARRY_LAYOUT_FIELD(AffineTransformData, Header, 0);
QUARRY_LAYOUT_FIELD(AffineTransformData, Frame, 8);
QUARRY_LAYOUT_FIELD(AffineTransformData, DstPoints, 40);
QUARRY_LAYOUT_FIELD(AffineTransformData, SrcPoints, 56);
