/// @file
/// The easy way to be a host in C++17: one small type per operation, views over the host's pixels, results that give
/// themselves back. Header-only, above Quarry.h; no OpenCV type in it (HostOpenCV.hpp has the adapters).
///
///     quarry::VarianceOfLaplacian sharpness;
///     const quarry::ImageView frame(pixels, 640, 480);
///     const float variance = sharpness(frame);
///
/// What all types here share:
///
/// 1. **An operation** is created with its `Options`, named fields that have defaults where some make sense, and owns
///    its handle. It moves and does not copy. One that has been moved from may only be assigned to or destroyed.
/// 2. **Views and spans own nothing**: what they show must live until the call has returned. A result without a name is
///    an input of a call (`denoise(subtract(a, b))`), but gives no view to keep. Functions of your own that look at
///    frames take an `ImageArgument`: views and results convert to it.
/// 3. **A result owns its buffers**, gives them back at its end, and keeps the handle alive until then: it may outlive
///    the operation. What it shows (its view, its elements) lives as long as the result. It moves and does not copy;
///    one that has been moved from may only be assigned to or destroyed. Results of updaters own nothing: they show
///    buffers of the updater until its next `Update`, and keep the updater alive.
/// 4. **One thread per operation** at a time, its results' ends included.
/// 5. **Failures are exceptions**: `std::invalid_argument` for what the interface itself would not notice (a wrong
///    channel count, padded rows, a short buffer, a wrong number of points), with a message that names what was given
///    and what is needed; all others as Quarry.h says.
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
