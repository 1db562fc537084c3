/// @file
/// Records of the grid of cells that objects occupy (ContourMaskProcessorDC).
#pragma once

#include "Quarry/SharedRecords.h"

/// What makes a cell occupied.
typedef struct ContourMaskProcessorOptions {
    uint32_t Header;  ///< the host's to use; not read
    /// 0..1: a cell is occupied when more than this share of its pixels lies inside kept contours; above 0.5
    /// contours are traced pixel by pixel
    float CellFillRate;
    float MinContourAreaRate;  ///< 0..1: smallest contour that is kept, share of the frame's area
} ContourMaskProcessorOptions;

QUARRY_LAYOUT_SIZE(ContourMaskProcessorOptions, 12);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorOptions, CellFillRate, 4);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorOptions, MinContourAreaRate, 8);

/// A frame and the size of the grid over it.
typedef struct ContourMaskProcessorData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit R, G, B, rows packed; `stride` and `timestamp` are not read
    int32_t GridWidth;   ///< columns, 1 or more
    int32_t GridHeight;  ///< rows, 1 or more
} ContourMaskProcessorData;

QUARRY_LAYOUT_SIZE(ContourMaskProcessorData, 48);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorData, Header, 0);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorData, Image, 8);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorData, GridWidth, 40);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorData, GridHeight, 44);

/// The grid. `DisposeResult` leaves it in place: release it with DestroyContourMaskProcessorResult (Memory.h).
typedef struct ContourMaskProcessorResult {
    int32_t Status;     ///< always 0
    struct Mask* Mask;  ///< `GridWidth` x `GridHeight` bytes, row by row: 1 occupied, 0 free
} ContourMaskProcessorResult;

QUARRY_LAYOUT_SIZE(ContourMaskProcessorResult, 16);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorResult, Status, 0);
QUARRY_LAYOUT_FIELD(ContourMaskProcessorResult, Mask, 8);
