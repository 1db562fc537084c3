/// @file
/// Records of the contour of an object (ContourCalcingProcessor).
#pragma once

#include "Quarry/SharedRecords.h"

/// How contours are traced and which one is chosen.
typedef struct ContourCalcingOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
    /// 1 every border pixel, 2 ends of straight runs, 3 and 4 Teh-Chin chains (L1, k-cosine)
    int32_t ApproximationMethod;
    /// 0 largest area, 1 largest diagonal of the bounding box; any other value chooses none
    int32_t SelectionMode;
} ContourCalcingOptions;

QUARRY_LAYOUT_SIZE(ContourCalcingOptions, 16);
QUARRY_LAYOUT_FIELD(ContourCalcingOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ContourCalcingOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(ContourCalcingOptions, ApproximationMethod, 8);
QUARRY_LAYOUT_FIELD(ContourCalcingOptions, SelectionMode, 12);

/// A mask of the whole frame and the rectangle around one object in it.
typedef struct ContourCalcingInputData {
    uint32_t Header;     ///< the host's to use; not read
    Mask ObjectMask;     ///< non-zero bytes are foreground
    RelRect ObjectRect;  ///< relative to the mask, and inside it
} ContourCalcingInputData;

QUARRY_LAYOUT_SIZE(ContourCalcingInputData, 40);
QUARRY_LAYOUT_FIELD(ContourCalcingInputData, Header, 0);
QUARRY_LAYOUT_FIELD(ContourCalcingInputData, ObjectMask, 8);
QUARRY_LAYOUT_FIELD(ContourCalcingInputData, ObjectRect, 24);

/// The chosen contour; give it back with `DisposeResult`, also when it has no points.
typedef struct ContourResult {
    int32_t Status;           ///< always 0
    struct Contour* Contour;  ///< relative to the mask; no points: nothing was found
} ContourResult;

QUARRY_LAYOUT_SIZE(ContourResult, 16);
QUARRY_LAYOUT_FIELD(ContourResult, Status, 0);
QUARRY_LAYOUT_FIELD(ContourResult, Contour, 8);
