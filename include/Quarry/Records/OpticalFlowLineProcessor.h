/// @file
/// Records of the motion across a line (OpticalFlowLineProcessor).
#pragma once

#include "Quarry/SharedRecords.h"

/// Holds nothing that is read.
typedef struct OFLineOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
} OFLineOptions;

QUARRY_LAYOUT_SIZE(OFLineOptions, 8);
QUARRY_LAYOUT_FIELD(OFLineOptions, Header, 0);
QUARRY_LAYOUT_FIELD(OFLineOptions, Reserved, 4);

/// A motion field and the line through it.
typedef struct OFLineData {
    uint32_t Header;              ///< the host's to use; not read
    uint32_t Reserved[3];         ///< not read
    AbsVectorMatrix* FlowMatrix;  ///< the motion field; an empty or null one gives zeros
    float LineStartX;             ///< share of the field's width, 0..1
    float LineStartY;             ///< share of the field's height, 0..1
    float LineEndX;               ///< share of the field's width, 0..1
    float LineEndY;               ///< share of the field's height, 0..1
    int32_t ValuesCount;          ///< number of values wanted, 0 or more
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

/// The profile along the line; give it back with `DisposeResult`.
typedef struct OFLineResult {
    uint64_t Unwritten;  ///< the library leaves these bytes as they are
    /// `ValuesCount` signed distances from the line, pixels, from its start to its end; not a number where
    /// rounding leaves no distance
    float* Values;
    int32_t ValuesCount;  ///< number of values
} OFLineResult;

QUARRY_LAYOUT_SIZE(OFLineResult, 24);
QUARRY_LAYOUT_FIELD(OFLineResult, Unwritten, 0);
QUARRY_LAYOUT_FIELD(OFLineResult, Values, 8);
QUARRY_LAYOUT_FIELD(OFLineResult, ValuesCount, 16);
