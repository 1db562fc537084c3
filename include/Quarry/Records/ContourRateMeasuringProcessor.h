/// @file
/// Records of the shape change rate (ContourRateMeasuringProcessor).
#pragma once

#include "Quarry/SharedRecords.h"

/// How shapes are compared.
typedef struct ContourRateMeasuringOptions {
    uint32_t Header;      ///< the host's to use; not read
    uint32_t Reserved;    ///< not read
    int32_t MatchMethod;  ///< 1, 2 or 3: I1, I2, I3 of the comparison of Hu moments
} ContourRateMeasuringOptions;

QUARRY_LAYOUT_SIZE(ContourRateMeasuringOptions, 12);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringOptions, MatchMethod, 8);

/// Two contours of one object, some time apart.
typedef struct ContourRateMeasuringInputData {
    uint32_t Header;          ///< the host's to use; not read
    Contour CurrentContour;   ///< only `Points` and `Count` are read
    Contour PreviousContour;  ///< only `Points` and `Count` are read
    int16_t FrameWidth;       ///< pixels
    int16_t FrameHeight;      ///< pixels
    double DefaultRate;       ///< given back as it is when `FrameWidth` or `FrameHeight` is 0
    double Interval;          ///< milliseconds between the contours
} ContourRateMeasuringInputData;

QUARRY_LAYOUT_SIZE(ContourRateMeasuringInputData, 80);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, Header, 0);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, CurrentContour, 8);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, PreviousContour, 32);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, FrameWidth, 56);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, FrameHeight, 58);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, DefaultRate, 64);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringInputData, Interval, 72);

/// The rate; holds no buffer.
typedef struct ContourRateMeasuringOutputData {
    int32_t Status;  ///< always 0
    double Rate;     ///< shape change per second; infinite or not a number at an `Interval` of 0
} ContourRateMeasuringOutputData;

QUARRY_LAYOUT_SIZE(ContourRateMeasuringOutputData, 16);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringOutputData, Status, 0);
QUARRY_LAYOUT_FIELD(ContourRateMeasuringOutputData, Rate, 8);
