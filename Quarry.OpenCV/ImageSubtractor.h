#pragma once

#include "Quarry.Frame/BinaryProcessor.h"

/// Absolute difference of two frames, byte by byte.
///
/// Both frames are read in place during the call, as packed rows (`width * 3` bytes) of the first one's size: of the
/// second only `data` is consulted. The result has the first frame's size, stride and timestamp; its rows are packed,
/// and the bytes that its stride leaves over are not written. The host gives it back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws cv::Exception          `data` of either frame is null while the frame is not empty
/// @throws std::invalid_argument  the first frame's size is negative, or its `stride` leaves no room for the packed
///                                rows of the result
class ImageSubtractor : public BinaryProcessor {
public:
    using BinaryProcessor::BinaryProcessor;

    ImageOperationResult DoProcess(BinaryImageOperationData data) override;
};
