#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/Memory.h"
#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "plain/ContourMaskProcessorDC.h"

using namespace quarry::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ContourMaskProcessorOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(),
                                                 bytes.Real<float>() / 32.0F};
    const RawHandle handle = Created(CreateCVContourMaskProcessor, options);
    const ContourMaskProcessorData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), bytes.Size(80), bytes.Size(80)};
    const bool hasGrid = input.GridWidth > 0 && input.GridHeight > 0;
    const auto drawing = Plainly([&] {
        return quarry::plain::FilledBlobs(quarry::plain::FrameOf(input.Image), options.CellFillRate,
                                          options.MinContourAreaRate);
    });
    const bool succeeded =
        Processed<ContourMaskProcessorResult>(handle, input, [&](ContourMaskProcessorResult& result) {
            Require(result.Mask->width == input.GridWidth && result.Mask->height == input.GridHeight,
                    "the grid has the size that was asked for");
            const cv::Size grid(input.GridWidth, input.GridHeight);
            Require(drawing.has_value(), "there is no grid where the plain steps refuse the frame");
            const auto cells = quarry::plain::OccupiedCells(*drawing, grid, options.CellFillRate);
            Require(std::equal(cells.begin(), cells.end(), result.Mask->data), "the grid is that of the plain steps");
            DestroyContourMaskProcessorResult(&result);  // DisposeResult leaves the grid to the host
        });
    Require(succeeded == (hasGrid && drawing), "a frame or grid is refused where the plain steps refuse it");
    return 0;
}
