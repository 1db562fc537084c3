#pragma once

#include "Quarry/Quarry.h"

/// A processor with a record pair of 40 and 8 bytes that computes nothing, in a shared object made like the library.
extern "C" QUARRY_API void CreateNoAlgorithm(void** handle, ProcessOptions* options);
