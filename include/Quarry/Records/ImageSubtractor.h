/// @file
/// Records of the absolute difference of two frames (ImageSubtractor).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read.
typedef struct BinaryImageOperationOptions {
    uint32_t Header;       ///< the host's to use; not read
    uint32_t Reserved;     ///< not read
    uint8_t ReservedByte;  ///< not read
} BinaryImageOperationOptions;

QUARRY_LAYOUT_SIZE(BinaryImageOperationOptions, 12);
QUARRY_LAYOUT_FIELD(BinaryImageOperationOptions, Header, 0);
QUARRY_LAYOUT_FIELD(BinaryImageOperationOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(BinaryImageOperationOptions, ReservedByte, 8);

/// Two frames of the same size.
typedef struct BinaryImageOperationData {
    uint32_t Header;    ///< the host's to use; not read
    Image FirstImage;   ///< 8-bit, 3 channels, rows packed; `stride` and `timestamp` go to the result
    Image SecondImage;  ///< only `data` is read: its size is that of the first
} BinaryImageOperationData;

QUARRY_LAYOUT_SIZE(BinaryImageOperationData, 72);
QUARRY_LAYOUT_FIELD(BinaryImageOperationData, Header, 0);
QUARRY_LAYOUT_FIELD(BinaryImageOperationData, FirstImage, 8);
QUARRY_LAYOUT_FIELD(BinaryImageOperationData, SecondImage, 40);

/// The difference; give it back with `DisposeResult`.
typedef struct ImageOperationResult {
    int32_t Status;       ///< always 0
    struct Image* Image;  ///< the first frame's size, `stride` and `timestamp`; rows packed, bytes 0..255
} ImageOperationResult;

QUARRY_LAYOUT_SIZE(ImageOperationResult, 16);
QUARRY_LAYOUT_FIELD(ImageOperationResult, Status, 0);
QUARRY_LAYOUT_FIELD(ImageOperationResult, Image, 8);
