#pragma once

#include "Quarry.Frame/Processor.h"

/// The flame region of a frame: a mask of its size, 255 flame and 0 none.
///
/// A pixel is a candidate by its CIE L*a*b* colour (sRGB, white point D65). The largest connected region of candidates
/// is kept if its contour's area is above 4 pixels; it is filled and dilated by up to 10 pixels.
///
/// Pixels are read in place during the call, in B, G, R order; rows are packed (`width * 3` bytes), `stride` is not
/// consulted. The mask belongs to the result, which the host gives back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  the frame has more than 2147483647 pixels
/// @throws cv::Exception          `data` is null while the frame is not empty, the frame is empty, or a side of it is
///                                negative
class PixelwiseFireProcessor : public Processor<ProcessOptions, FireInputData, FireOutputData> {
public:
    using Processor::Processor;

    FireOutputData DoProcess(FireInputData data) override;
    void DoDisposeData(FireOutputData* result) override;

    struct Lab {
        double L;
        double a;
        double b;
    };
    /// @param r, g, b  0..255
    static Lab RGB2Lab(double r, double g, double b);

    static bool ColorLabLIsFlame(double L, double a);
    static bool ColorLabBIsFlame(double a, double b);
    static bool ColorIsFlame(double L, double a, double b);
};
