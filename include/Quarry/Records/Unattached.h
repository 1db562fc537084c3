/// @file
/// Records that no operation fills; they can be created and destroyed all the same (Memory.h).
#pragma once

#include "Quarry/SharedRecords.h"

/// A float image of an updater.
typedef struct FloatImageUpdaterResult {
    int32_t Status;     ///< always 0
    FloatImage* Image;  ///< the image
} FloatImageUpdaterResult;

QUARRY_LAYOUT_SIZE(FloatImageUpdaterResult, 16);
QUARRY_LAYOUT_FIELD(FloatImageUpdaterResult, Status, 0);
QUARRY_LAYOUT_FIELD(FloatImageUpdaterResult, Image, 8);

/// A depth map.
typedef struct DepthMapCalcResult {
    int32_t Status;        ///< always 0
    FloatImage* DepthMap;  ///< the map
} DepthMapCalcResult;

QUARRY_LAYOUT_SIZE(DepthMapCalcResult, 16);
QUARRY_LAYOUT_FIELD(DepthMapCalcResult, Status, 0);
QUARRY_LAYOUT_FIELD(DepthMapCalcResult, DepthMap, 8);

/// Points and a mask of their frame.
typedef struct SODResult {
    int32_t Status;      ///< always 0
    FloatPoint* Points;  ///< `Count` points
    int32_t Count;       ///< number of points
    struct Mask* Mask;   ///< of the frame
} SODResult;

QUARRY_LAYOUT_SIZE(SODResult, 32);
QUARRY_LAYOUT_FIELD(SODResult, Status, 0);
QUARRY_LAYOUT_FIELD(SODResult, Points, 8);
QUARRY_LAYOUT_FIELD(SODResult, Count, 16);
QUARRY_LAYOUT_FIELD(SODResult, Mask, 24);
