/// @file
/// Records of the contour against a polygon (ContourIntersectionProcessorPT).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read.
typedef struct ContourIntersectionProcessorOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
} ContourIntersectionProcessorOptions;

QUARRY_LAYOUT_SIZE(ContourIntersectionProcessorOptions, 8);
QUARRY_LAYOUT_FIELD(ContourIntersectionProcessorOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ContourIntersectionProcessorOptions, Reserved, 4);

/// A polygon and the contour to place, both in the same coordinates.
typedef struct ContourIntersectionProcessorData {
    uint32_t Header;      ///< the host's to use; not read
    Contour Polygon;      ///< only `Points` and `Count` are read
    Contour TestContour;  ///< at least one point; only `Points` and `Count` are read
} ContourIntersectionProcessorData;

QUARRY_LAYOUT_SIZE(ContourIntersectionProcessorData, 56);
QUARRY_LAYOUT_FIELD(ContourIntersectionProcessorData, Header, 0);
QUARRY_LAYOUT_FIELD(ContourIntersectionProcessorData, Polygon, 8);
QUARRY_LAYOUT_FIELD(ContourIntersectionProcessorData, TestContour, 32);

/// Where the contour lies; holds no buffer. The spelling of the name is part of the interface.
typedef struct ContourInstersectionProcessorResult {
    int32_t Status;    ///< always 0
    int32_t Position;  ///< 1 inside, -1 outside, 0 across the border; 1 when the first point is on the border
} ContourInstersectionProcessorResult;

QUARRY_LAYOUT_SIZE(ContourInstersectionProcessorResult, 8);
QUARRY_LAYOUT_FIELD(ContourInstersectionProcessorResult, Status, 0);
QUARRY_LAYOUT_FIELD(ContourInstersectionProcessorResult, Position, 4);
