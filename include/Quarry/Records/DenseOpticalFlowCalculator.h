/// @file
/// Records of the dense optical flow (DenseOpticalFlowCalculator).
#pragma once

#include "Quarry/SharedRecords.h"

/// How fine the flow is. A value outside 0..1, or one that is not a number, leaves the default in place.
typedef struct OFCOptions {
    uint32_t Header;    ///< the host's to use; not read
    float Detail;       ///< 0..1: side of the averaging window, from 27 down to 7 pixels; 18 by default
    uint32_t Reserved;  ///< not read
    /// 0..1: pyramid levels and iterations, 0 to 10 each (1 iteration at exactly 0), with a Gaussian window
    /// above 0.7; 5 and 3 by default
    float Quality;
} OFCOptions;

QUARRY_LAYOUT_SIZE(OFCOptions, 16);
QUARRY_LAYOUT_FIELD(OFCOptions, Header, 0);
QUARRY_LAYOUT_FIELD(OFCOptions, Detail, 4);
QUARRY_LAYOUT_FIELD(OFCOptions, Reserved, 8);
QUARRY_LAYOUT_FIELD(OFCOptions, Quality, 12);

/// The next frame. One of another size, null or not, begins anew; one with null `data` gives no result.
typedef struct OFCData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit R, G, B, rows packed; `stride` and `timestamp` are not read
} OFCData;

QUARRY_LAYOUT_SIZE(OFCData, 40);
QUARRY_LAYOUT_FIELD(OFCData, Header, 0);
QUARRY_LAYOUT_FIELD(OFCData, Image, 8);

/// The flow. The buffer stays the updater's: valid until the next `Update` or `Dispose`.
typedef struct OFCResult {
    int32_t Status;               ///< always 0
    AbsVectorMatrix* FlowMatrix;  ///< how far each pixel of the previous frame moved, right and down, in pixels
} OFCResult;

QUARRY_LAYOUT_SIZE(OFCResult, 16);
QUARRY_LAYOUT_FIELD(OFCResult, Status, 0);
QUARRY_LAYOUT_FIELD(OFCResult, FlowMatrix, 8);
