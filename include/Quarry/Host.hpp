/// @file
/// The easy way to use the library from C++17: one small type per operation, views over the host's pixels, results that
/// release their buffers. Header-only, above Quarry.h, without OpenCV types (HostOpenCV.hpp has the adapters).
///
///     quarry::VarianceOfLaplacian sharpness;
///     const quarry::ImageView frame(pixels, 640, 480);
///     const float variance = sharpness(frame);
///
/// Rules for all types here:
///
/// 1. **An operation** owns its handle. It is created with its `Options`, named fields with defaults where a default
///    makes sense. It can be moved, not copied. After a move the old object may only be assigned to or destroyed.
/// 2. **Views and spans own nothing**: their pixels or elements must live until the call has returned. A temporary
///    result can be the input of a call (`denoise(subtract(a, b))`), but gives no view to keep. Let your own functions
///    that read frames take an `ImageArgument`: views and results convert to it.
/// 3. **A processor's result owns its buffers** and gives them back when it is destroyed. It keeps the handle alive, so
///    it may outlive the operation. Its view and its elements are valid as long as the result. It can be moved, not
///    copied; after a move the old object may only be assigned to or destroyed. **An updater's result owns nothing**:
///    it shows the updater's buffers, which are valid until the next `Update`, and keeps the updater alive.
/// 4. **One thread per operation** at a time, also for destroying its results.
/// 5. **Failures are exceptions**. `std::invalid_argument` reports errors that the C functions cannot notice (a wrong
///    channel count, padded rows, a short buffer, a wrong number of points); its message names the given value and what
///    is needed. All other failures are those of Quarry.h.
#pragma once

#include "Quarry/Host/Contours.hpp"
#include "Quarry/Host/Detectors.hpp"
#include "Quarry/Host/Framed.hpp"
#include "Quarry/Host/Frames.hpp"
#include "Quarry/Host/Handle.hpp"
#include "Quarry/Host/Measures.hpp"
#include "Quarry/Host/Operation.hpp"
#include "Quarry/Host/Results.hpp"
#include "Quarry/Host/Updaters.hpp"
#include "Quarry/Host/Views.hpp"
#include "Quarry/Quarry.h"
