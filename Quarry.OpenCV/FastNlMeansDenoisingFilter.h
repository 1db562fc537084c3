#pragma once

#include "Quarry.Frame/FilterBase.h"

/// A denoised copy of a colour frame, by non-local means (Buades, Coll and Morel, IPOL 2011) with fixed strength.
///
/// The frame is read in place during the call; rows are packed (`width * 3` bytes). The result has the frame's size,
/// stride and timestamp; its rows are packed, and the bytes that its stride leaves over are not written. For an empty
/// frame the whole buffer is not written. The host gives the result back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws cv::Exception          `data` is null while the frame is not empty, or width and height are both negative
/// @throws std::invalid_argument  `stride` leaves no room for the packed rows of the result
class FastNlMeansDenoisingFilter : public FilterBase {
public:
    using FilterBase::FilterBase;

    FilterResult DoProcess(FilterData data) override;
    void DoDisposeData(FilterResult* result) override;
};
