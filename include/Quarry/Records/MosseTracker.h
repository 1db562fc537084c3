/// @file
/// Records of the correlation tracker (MosseTracker).
#pragma once

#include "Quarry/SharedRecords.h"

/// How the filter adapts.
typedef struct MosseTrackerOptions {
    uint32_t Header;       ///< the host's to use; not read
    uint32_t Reserved[2];  ///< not read
    uint32_t TrackerMode;  ///< 0: learning rate 0.2, peak-to-sidelobe threshold 5.7; 1: 0.3 and 3.0
} MosseTrackerOptions;

QUARRY_LAYOUT_SIZE(MosseTrackerOptions, 16);
QUARRY_LAYOUT_FIELD(MosseTrackerOptions, Header, 0);
QUARRY_LAYOUT_FIELD(MosseTrackerOptions, Reserved, 4);
QUARRY_LAYOUT_FIELD(MosseTrackerOptions, TrackerMode, 12);

/// The next frame.
typedef struct MosseTrackerData {
    uint32_t Header;        ///< the host's to use; not read
    struct Image Image;     ///< 8-bit B, G, R, rows packed; `stride` and `timestamp` are not read
    PixelRect InitialRect;  ///< the target in the first frame, 2 x 2 pixels or more; not read later
} MosseTrackerData;

QUARRY_LAYOUT_SIZE(MosseTrackerData, 48);
QUARRY_LAYOUT_FIELD(MosseTrackerData, Header, 0);
QUARRY_LAYOUT_FIELD(MosseTrackerData, Image, 8);
QUARRY_LAYOUT_FIELD(MosseTrackerData, InitialRect, 40);

/// Where the target is; holds no buffer. The state is always NoResult.
typedef struct MosseTrackerResult {
    int32_t Status;        ///< always 0
    PixelRect TargetRect;  ///< the filter's window, pixels
    uint8_t Found;         ///< 1 when the last frame showed the target, else 0
    uint8_t Zero[3];       ///< always 0
} MosseTrackerResult;

QUARRY_LAYOUT_SIZE(MosseTrackerResult, 16);
QUARRY_LAYOUT_FIELD(MosseTrackerResult, Status, 0);
QUARRY_LAYOUT_FIELD(MosseTrackerResult, TargetRect, 4);
QUARRY_LAYOUT_FIELD(MosseTrackerResult, Found, 12);
QUARRY_LAYOUT_FIELD(MosseTrackerResult, Zero, 13);
