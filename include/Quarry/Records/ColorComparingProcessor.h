/// @file
/// Records of the colour comparison of two regions (ColorComparingProcessor).
#pragma once

#include "Quarry/SharedRecords.h"

/// How histograms are compared.
typedef struct ColorComparingOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
    /// 0 correlation, 1 chi-square, 2 intersection, 3 Bhattacharyya, 4 alternative chi-square,
    /// 5 Kullback-Leibler
    int32_t CompareMethod;
} ColorComparingOptions;

QUARRY_LAYOUT_SIZE(ColorComparingOptions, 12);
QUARRY_LAYOUT_FIELD(ColorComparingOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ColorComparingOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(ColorComparingOptions, CompareMethod, 8);

/// Two frames and the region to compare.
typedef struct ColorComparingInputData {
    uint32_t Header;    ///< the host's to use; not read
    Image FirstImage;   ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
    Image SecondImage;  ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
    RelRect Area;       ///< relative to the first frame; the same pixels are taken of both, and lie inside both
} ColorComparingInputData;

QUARRY_LAYOUT_SIZE(ColorComparingInputData, 88);
QUARRY_LAYOUT_FIELD(ColorComparingInputData, Header, 0);
QUARRY_LAYOUT_FIELD(ColorComparingInputData, FirstImage, 8);
QUARRY_LAYOUT_FIELD(ColorComparingInputData, SecondImage, 40);
QUARRY_LAYOUT_FIELD(ColorComparingInputData, Area, 72);

/// The similarity; holds no buffer.
typedef struct ColorComparingOutputData {
    int32_t Status;     ///< always 0
    double Similarity;  ///< in the measure of `CompareMethod`
} ColorComparingOutputData;

QUARRY_LAYOUT_SIZE(ColorComparingOutputData, 16);
QUARRY_LAYOUT_FIELD(ColorComparingOutputData, Status, 0);
QUARRY_LAYOUT_FIELD(ColorComparingOutputData, Similarity, 8);
