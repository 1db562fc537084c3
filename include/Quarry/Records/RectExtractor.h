/// @file
/// Records of the rotated rectangle cut out of a frame (RectExtractor).
#pragma once

#include "Quarry/SharedRecords.h"

/// How pixels are interpolated.
typedef struct RectExtractorOptions {
    uint32_t Header;         ///< the host's to use; not read
    uint32_t Reserved;       ///< not read
    uint16_t Interpolation;  ///< 1 bilinear, any other value nearest neighbour
} RectExtractorOptions;

QUARRY_LAYOUT_SIZE(RectExtractorOptions, 12);
QUARRY_LAYOUT_FIELD(RectExtractorOptions, Header, 0);
QUARRY_LAYOUT_FIELD(RectExtractorOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(RectExtractorOptions, Interpolation, 8);

/// A frame and the rectangle to cut.
typedef struct RectExtractorData {
    uint32_t Header;     ///< the host's to use; not read
    struct Image Image;  ///< 8-bit, 3 channels, rows packed; `timestamp` goes to the result
    int16_t CenterX;     ///< centre of the rectangle, column in pixels
    int16_t CenterY;     ///< centre of the rectangle, row in pixels
    int16_t Width;       ///< of the output, pixels, 0 or more
    int16_t Height;      ///< of the output, pixels, 0 or more
    double Angle;        ///< degrees; rounded to single precision
} RectExtractorData;

QUARRY_LAYOUT_SIZE(RectExtractorData, 56);
QUARRY_LAYOUT_FIELD(RectExtractorData, Header, 0);
QUARRY_LAYOUT_FIELD(RectExtractorData, Image, 8);
QUARRY_LAYOUT_FIELD(RectExtractorData, CenterX, 40);
QUARRY_LAYOUT_FIELD(RectExtractorData, CenterY, 42);
QUARRY_LAYOUT_FIELD(RectExtractorData, Width, 44);
QUARRY_LAYOUT_FIELD(RectExtractorData, Height, 46);
QUARRY_LAYOUT_FIELD(RectExtractorData, Angle, 48);

/// The cut; give it back with `DisposeResult`.
typedef struct RectExtractorResult {
    int32_t Status;  ///< always 0
    /// `Width` x `Height` pixels, rows packed, black beyond the frame; `stride` is (input `stride` / input
    /// width) x `Width`
    struct Image* Image;
} RectExtractorResult;

QUARRY_LAYOUT_SIZE(RectExtractorResult, 16);
QUARRY_LAYOUT_FIELD(RectExtractorResult, Status, 0);
QUARRY_LAYOUT_FIELD(RectExtractorResult, Image, 8);
