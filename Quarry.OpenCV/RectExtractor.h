#pragma once

#include <opencv2/core.hpp>

#include "Quarry.Frame/Processor.h"

/// A rotated rectangle cut out of a frame, upright.
///
/// The result has the size that the host asks for, and its centre is the rectangle's. It is black where the rectangle
/// leaves the frame. The angle is rounded to single precision. If the frame has no pixels, those of the result are not
/// written.
///
/// The frame is read in place during the call, as packed rows (`width * 3` bytes). The result's rows are packed too;
/// its `stride` is `Width` times the whole number of bytes per pixel, `stride / width`, of the frame. The host gives it
/// back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  the frame's width is 0, a size is negative, or the frame's stride leaves no room for
///                                the packed rows of the result
/// @throws cv::Exception          the frame is too large to warp, 32767 pixels and more a side; both sizes are written
///                                to the standard output first, with carriage returns
class RectExtractor : public Processor<RectExtractorOptions, RectExtractorData, RectExtractorResult> {
public:
    using Processor::Processor;

    RectExtractorResult DoProcess(RectExtractorData data) override;
    void DoDisposeData(RectExtractorResult* result) override;

private:
    /// Fills `destination` with the rectangle of its size around a centre of `source`.
    /// @param angle  degrees
    void ExtractRect(const cv::Mat& source, cv::Mat& destination, int centerX, int centerY, float angle) const;
};
