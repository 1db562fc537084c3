/// @file
/// Records of the motion across a line (OpticalFlowLineProcessor).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read.
typedef struct OFLineOptions {
    uint32_t Header;
    uint32_t Reserved;  ///< not read
} OFLineOptions;

QUARRY_LAYOUT_SIZE(OFLineOptions, 8);
QUARRY_LAYOUT_FIELD(OFLineOptions, Header, 0);
QUARRY_LAYOUT_FIELD(OFLineOptions, Reserved, 4);

/// A motion field and the line through it.
typedef struct OFLineData {
    uint32_t Header;
    uint32_t Reserved[3];         ///< not read
    AbsVectorMatrix* FlowMatrix;  ///< the motion field
    float LineStartX;             ///< relative to the field's width
    float LineStartY;             ///< relative to the field's height
    float LineEndX;               ///< relative to the field's width
    float LineEndY;               ///< relative to the field's height
    int32_t ValuesCount;          ///< number of values wanted
    uint32_t ReservedEnd;         ///< not read
} OFLineData;

QUARRY_LAYOUT_SIZE(OFLineData, 48);
QUARRY_LAYOUT_FIELD(OFLineData, Header, 0);
QUARRY_LAYOUT_FIELD(OFLineData, Reserved, 4);
QUARRY_LAYOUT_FIELD(OFLineData, FlowMatrix, 16);
QUARRY_LAYOUT_FIELD(OFLineData, LineStartX, 24);
QUARRY_LAYOUT_FIELD(OFLineData, LineStartY, 28);
QUARRY_LAYOUT_FIELD(OFLineData, LineEndX, 32);
QUARRY_LAYOUT_FIELD(OFLineData, LineEndY, 36);
QUARRY_LAYOUT_FIELD(OFLineData, ValuesCount, 40);
QUARRY_LAYOUT_FIELD(OFLineData, ReservedEnd, 44);

/// The profile; give it back with `DisposeResult`.
typedef struct OFLineResult {
    uint64_t Unwritten;   ///< the library leaves these bytes as they are
    float* Values;        ///< `ValuesCount` values; not a number where rounding leaves no distance
    int32_t ValuesCount;  ///< number of values
} OFLineResult;

QUARRY_LAYOUT_SIZE(OFLineResult, 24);
QUARRY_LAYOUT_FIELD(OFLineResult, Unwritten, 0);
QUARRY_LAYOUT_FIELD(OFLineResult, Values, 8);
QUARRY_LAYOUT_FIELD(OFLineResult, ValuesCount, 16);
