/// @file
/// Options of the processors that have nothing to set.
#pragma once

#include "Quarry/Framing.h"

/// Holds nothing that is read.
typedef struct ProcessOptions {
    uint32_t Header;    ///< the host's to use; not read
    uint32_t Reserved;  ///< not read
} ProcessOptions;

QUARRY_LAYOUT_SIZE(ProcessOptions, 8);
QUARRY_LAYOUT_FIELD(ProcessOptions, Header, 0);
QUARRY_LAYOUT_FIELD(ProcessOptions, Reserved, 4);
