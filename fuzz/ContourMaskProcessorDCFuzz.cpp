#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/Memory.h"
#include "fuzz/Bytes.h"
#include "fuzz/Calls.h"
#include "fuzz/Plain.h"

using namespace quarry::fuzz;

namespace {

/// The blobs, filled.
cv::Mat Drawing(const Image& image, const ContourMaskProcessorOptions& options) {
    const std::vector<PixelContour> blobs = BlobsOf(image, options.CellFillRate, options.MinContourAreaRate);
    cv::Mat drawing(image.height, image.width, CV_8UC1, cv::Scalar(0));
    for (std::size_t i = 0; i < blobs.size(); ++i) {
        cv::drawContours(drawing, blobs, static_cast<int>(i), cv::Scalar(255), cv::FILLED);
    }
    return drawing;
}

uint8_t Cell(const cv::Mat& drawing, const Mask& grid, int row, int column, float rate) {
    const int width = drawing.cols / grid.width;
    const int height = drawing.rows / grid.height;
    int count = 0;
    for (int y = row * height; y < (row + 1) * height; ++y) {
        for (int x = column * width; x < (column + 1) * width; ++x) count += drawing.at<uint8_t>(y, x) != 0 ? 1 : 0;
    }
    return count > Truncated(static_cast<double>(static_cast<float>(width * height) * rate)) ? 1 : 0;
}

bool IsGrid(const Mask& grid, const cv::Mat& drawing, float rate) {
    for (int row = 0; row < grid.height; ++row) {
        for (int column = 0; column < grid.width; ++column) {
            const uint8_t cell = grid.data[row * grid.width + column];
            if (cell != Cell(drawing, grid, row, column, rate)) return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const ContourMaskProcessorOptions options = {bytes.Any<uint32_t>(), bytes.Real<float>(),
                                                 bytes.Real<float>() / 32.0F};
    const RawHandle handle = Created(CreateCVContourMaskProcessor, options);
    const ContourMaskProcessorData input = {bytes.Any<uint32_t>(), bytes.FrameOrNull(), bytes.Size(80), bytes.Size(80)};
    const bool hasGrid = input.GridWidth > 0 && input.GridHeight > 0;
    const auto drawing = Plainly([&] { return Drawing(input.Image, options); });
    const bool succeeded =
        Processed<ContourMaskProcessorResult>(handle, input, [&](ContourMaskProcessorResult& result) {
            Require(result.Mask->width == input.GridWidth && result.Mask->height == input.GridHeight,
                    "the grid has the size that was asked for");
            Require(drawing && IsGrid(*result.Mask, *drawing, options.CellFillRate),
                    "the grid is that of the plain steps");
            DestroyContourMaskProcessorResult(&result);  // DisposeResult leaves the grid to the host
        });
    Require(succeeded == (hasGrid && drawing), "a frame or grid is refused where the plain steps refuse it");
    return 0;
}
