/// @file
/// Records of the background model (BackgroundUpdatingSystem).
#pragma once

#include "Quarry/SharedRecords.h"

/// How fast the background is learnt and what differs from it.
typedef struct BackgroundOptions {
    uint32_t Header;        ///< the host's to use; not read
    float Sensitivity;      ///< 0..1: grey levels above 60 - 20 x `Sensitivity` are foreground
    int32_t HistoryLength;  ///< frames of history; used only where no rate follows from the times
    float AdaptationTime;   ///< seconds in which a learnt background takes over 88 % of a change
    /// divides `AdaptationTime` while the background is being learnt; 0 divides nothing
    float LearningSpeedup;
} BackgroundOptions;

QUARRY_LAYOUT_SIZE(BackgroundOptions, 20);
QUARRY_LAYOUT_FIELD(BackgroundOptions, Header, 0);
QUARRY_LAYOUT_FIELD(BackgroundOptions, Sensitivity, 4);
QUARRY_LAYOUT_FIELD(BackgroundOptions, HistoryLength, 8);
QUARRY_LAYOUT_FIELD(BackgroundOptions, AdaptationTime, 12);
QUARRY_LAYOUT_FIELD(BackgroundOptions, LearningSpeedup, 16);

/// The next frame. A frame of another size begins a new model.
typedef struct BackgroundData {
    uint32_t Header;  ///< the host's to use; not read
    /// 8-bit B, G, R, rows packed; `stride` is not read; the pixels must live until GetUpdateResult
    struct Image Image;
    uint64_t Reserved;  ///< not read
} BackgroundData;

QUARRY_LAYOUT_SIZE(BackgroundData, 48);
QUARRY_LAYOUT_FIELD(BackgroundData, Header, 0);
QUARRY_LAYOUT_FIELD(BackgroundData, Image, 8);
QUARRY_LAYOUT_FIELD(BackgroundData, Reserved, 40);

/// Foreground and background. The buffers stay the updater's: valid until the next `Update` or `Dispose`.
typedef struct BackgroundResult {
    int32_t Status;           ///< always 0
    uint8_t* ForegroundMask;  ///< one byte per pixel, rows packed: 255 foreground, 0 background
    Image* BackgroundImage;   ///< of the frame's size, 3 channels, rows packed
    Image* ReservedImage;     ///< of the same geometry; only its timestamp is written
} BackgroundResult;

QUARRY_LAYOUT_SIZE(BackgroundResult, 32);
QUARRY_LAYOUT_FIELD(BackgroundResult, Status, 0);
QUARRY_LAYOUT_FIELD(BackgroundResult, ForegroundMask, 8);
QUARRY_LAYOUT_FIELD(BackgroundResult, BackgroundImage, 16);
QUARRY_LAYOUT_FIELD(BackgroundResult, ReservedImage, 24);
