/// @file
/// Records of the non-local means denoising (FastNlMeansDenoisingFilter).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read: the strength is 10 for lightness and for colour, and fine texture goes with the noise.
typedef struct FilterOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
} FilterOptions;

QUARRY_LAYOUT_SIZE(FilterOptions, 8);
QUARRY_LAYOUT_FIELD(FilterOptions, Header, 0);
QUARRY_LAYOUT_FIELD(FilterOptions, Reserved, 4);

/// A frame to denoise.
typedef struct FilterData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` go to the result
} FilterData;

QUARRY_LAYOUT_SIZE(FilterData, 40);
QUARRY_LAYOUT_FIELD(FilterData, Header, 0);
QUARRY_LAYOUT_FIELD(FilterData, Image, 8);

/// The denoised frame; give it back with `DisposeResult`.
typedef struct FilterResult {
    int32_t Status;       ///< always 0
    struct Image* Image;  ///< the frame's size, `stride` and `timestamp`; rows packed
} FilterResult;

QUARRY_LAYOUT_SIZE(FilterResult, 16);
QUARRY_LAYOUT_FIELD(FilterResult, Status, 0);
QUARRY_LAYOUT_FIELD(FilterResult, Image, 8);
