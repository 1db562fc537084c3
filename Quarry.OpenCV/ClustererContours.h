#pragma once

#include "Quarry.Frame/ClustererBase.h"

/// The blobs of a frame that is black everywhere else: one cluster per outermost contour whose area is not too small,
/// in the order in which they are found.
///
/// Points and centres of mass are in relative coordinates. A cluster's area is a share of the frame's area, holes
/// included; its perimeter is divided by the frame's width alone. A blob without area has its centre far outside the
/// frame.
///
/// Pixels are read in place during the call, in R, G, B order; rows are packed (`width * 3` bytes), `stride` is not
/// consulted. The clusters belong to the result, which the host gives back with DisposeResult.
/// @throws MarshalingException  a record's length word or tag is wrong; the result record is untouched
/// @throws cv::Exception        `data` is null while the frame is not empty, or the frame is empty
class ClustererContours : public ClustererBase {
public:
    using ClustererBase::ClustererBase;

    ClustererResult DoProcess(ClustererData data) override;
};
