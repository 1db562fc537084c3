#pragma once

#include "Quarry.Frame/Processor.h"

/// Turns a frame about its centre, and scales it, on a canvas that holds the whole turned frame; resizes the canvas to
/// the frame's size.
///
/// The canvas has the size of the turned, unscaled frame: the scale changes the picture on the canvas, not the canvas.
/// Pixels that the picture does not cover are black. An angle that is not a number gives pixels without meaning.
///
/// The frame is taken to have the size of the options; its own size is not consulted. Pixels are read in place during
/// the call; rows are packed (`width * 3` bytes). The result has the frame's stride and timestamp; its rows are packed,
/// and the bytes that its stride leaves over are not written. The host gives it back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  a side of the options' size is negative, or the frame's `stride` leaves no room for
///                                the packed rows of the result
/// @throws cv::Exception          `data` is null while the size is not empty, the size is empty, or a side is 32767
///                                pixels or more
/// @throws std::bad_alloc         there is no memory, or `height * stride` wraps to a negative number
class RotationTransformProcessor : public Processor<TransformOptions, RotationTransformData, TransformResult> {
public:
    using Processor::Processor;

    TransformResult DoProcess(RotationTransformData data) override;
    void DoDisposeData(TransformResult* result) override;
};
