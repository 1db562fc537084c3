/// @file
/// Records that the geometric transforms share (AffineTransformProcessor, RotationTransformProcessor).
#pragma once

#include "Quarry/SharedRecords.h"

/// Size of the output.
typedef struct TransformOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
    int32_t Width;      ///< pixels
    int32_t Height;     ///< pixels
} TransformOptions;

QUARRY_LAYOUT_SIZE(TransformOptions, 16);
QUARRY_LAYOUT_FIELD(TransformOptions, Header, 0);
QUARRY_LAYOUT_FIELD(TransformOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(TransformOptions, Width, 8);
QUARRY_LAYOUT_FIELD(TransformOptions, Height, 12);

/// The transformed frame; give it back with `DisposeResult`.
typedef struct TransformResult {
    int32_t Status;      ///< always 0
    Image* ResultImage;  ///< of the options' size, 3 channels, rows packed, with the frame's `timestamp`
} TransformResult;

QUARRY_LAYOUT_SIZE(TransformResult, 16);
QUARRY_LAYOUT_FIELD(TransformResult, Status, 0);
QUARRY_LAYOUT_FIELD(TransformResult, ResultImage, 8);
