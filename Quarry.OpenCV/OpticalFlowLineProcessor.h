#pragma once

#include <vector>

#include "Quarry.Frame/Processor.h"

/// Motion across a line: how far the pixels of a straight segment lie from it once a motion field has moved them,
/// resampled to the number of values that the host asks for.
///
/// The field is read in place during the call. The values belong to the result, which the host gives back with
/// DisposeResult. An empty or null field, and a segment outside it, give zeros.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `ValuesCount` is negative
class OpticalFlowLineProcessor : public Processor<OFLineOptions, OFLineData, OFLineResult> {
public:
    using Processor::Processor;

    OFLineResult DoProcess(OFLineData data) override;
    void DoDisposeData(OFLineResult* result) override;

    /// Resamples a buffer to `count` values by nearest neighbour: repeats each value a whole number of times (the last
    /// one as often as needed) or picks values.
    /// @param buffer  not empty
    static void CopyBufferToResult(const std::vector<float>& buffer, float* out, int count);
};
