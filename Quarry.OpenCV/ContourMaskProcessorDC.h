#pragma once

#include "Quarry.Frame/ContourMaskProcessor.h"

/// A grid of the cells that objects occupy. The regions of the frame that are not black are outlined, small contours
/// are dropped, the others are filled, and the filled pixels are counted cell by cell.
///
/// All cells have the same size in whole pixels; pixels right of and below the last whole cell belong to no cell.
/// `CellFillRate` also selects how contours are approximated: above 0.5 every border pixel is kept.
///
/// Pixels are read in place during the call, in R, G, B order; rows are packed (`width * 3` bytes), `stride` is not
/// consulted. DisposeResult leaves the mask in place: the host releases it with DestroyContourMaskProcessorResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `GridWidth` or `GridHeight` is below 1, or the grid has more than 2147483647 cells
/// @throws cv::Exception          `data` is null while the frame is not empty, or the frame is empty
class ContourMaskProcessorDC : public ContourMaskProcessor {
public:
    using ContourMaskProcessor::ContourMaskProcessor;

    ContourMaskProcessorResult DoProcess(ContourMaskProcessorData data) override;
};
