#include "Quarry.OpenCV/ContourMaskProcessorDC.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/OuterContours.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/Memory.h"

namespace {

constexpr uint8_t kDrawn = 255;

void CheckGrid(int width, int height) {
    if (width >= 1 && height >= 1 && int64_t{width} * height <= std::numeric_limits<int32_t>::max()) return;
    throw std::invalid_argument("ContourMaskProcessorData.GridWidth x GridHeight is " + std::to_string(width) + " x " +
                                std::to_string(height) +
                                "; each must be 1 or more, and their product at most 2147483647");
}

/// Filled contours, drawn in the bounding box of all of them. No pixel outside the box is drawn.
struct Drawing {
    cv::Rect box;
    cv::Mat pixels;
};

Drawing Filled(const std::vector<quarry::OuterContour>& contours) {
    Drawing drawing;
    for (const quarry::OuterContour& contour : contours) drawing.box |= cv::boundingRect(contour.points);
    drawing.pixels = cv::Mat::zeros(drawing.box.size(), CV_8UC1);
    for (const quarry::OuterContour& contour : contours) {
        const std::vector<cv::Mat> alone{cv::Mat(contour.points)};
        cv::drawContours(drawing.pixels, alone, 0, cv::Scalar(kDrawn), cv::FILLED, cv::LINE_8, {},
                         std::numeric_limits<int>::max(), -drawing.box.tl());
    }
    return drawing;
}

int CountDrawn(const uint8_t* begin, const uint8_t* end) {
    return std::accumulate(begin, end, 0, [](int count, uint8_t pixel) { return count + (pixel == kDrawn ? 1 : 0); });
}

/// Adds the drawn pixels of one row of the frame to the counts of the cells in that row.
void AddRow(const Drawing& drawing, int row, int cellWidth, std::vector<int>& counts) {
    const int left = drawing.box.x;
    const int right = std::min(left + drawing.box.width, cellWidth * static_cast<int>(counts.size()));
    const auto* const pixels = drawing.pixels.ptr(row - drawing.box.y);
    for (int begin = left; begin < right;) {
        const int cell = begin / cellWidth;
        const int end = std::min((cell + 1) * cellWidth, right);
        counts[static_cast<std::size_t>(cell)] += CountDrawn(pixels + (begin - left), pixels + (end - left));
        begin = end;
    }
}

/// Counts the drawn pixels of each cell in one row of the grid. A cell of height or width 0 has none.
void CountRowOfCells(const Drawing& drawing, const cv::Size& cell, int row, std::vector<int>& counts) {
    std::fill(counts.begin(), counts.end(), 0);
    const int top = std::max(row * cell.height, drawing.box.y);
    const int bottom = std::min((row + 1) * cell.height, drawing.box.y + drawing.box.height);
    for (int y = top; y < bottom; ++y) AddRow(drawing, y, cell.width, counts);
}

/// Marks the cells in which the share of drawn pixels exceeds the fill rate.
void FillGrid(const Drawing& drawing, const cv::Size& cell, float fillRate, const Mask& grid) {
    const int threshold = quarry::Truncate(static_cast<float>(int64_t{cell.width} * cell.height) * fillRate);
    std::vector<int> counts(static_cast<std::size_t>(grid.width));
    uint8_t* out = grid.data;
    for (int row = 0; row < grid.height; ++row) {
        CountRowOfCells(drawing, cell, row, counts);
        out = std::transform(counts.begin(), counts.end(), out, [=](int count) { return count > threshold ? 1 : 0; });
    }
}

}  // namespace

ContourMaskProcessorResult ContourMaskProcessorDC::DoProcess(ContourMaskProcessorData data) {
    CheckGrid(data.GridWidth, data.GridHeight);
    quarry::PendingResult result(CreateContourMaskProcessorResult(data.GridWidth, data.GridHeight),
                                 DestroyContourMaskProcessorResult);
    const cv::Size cell(data.Image.width / data.GridWidth, data.Image.height / data.GridHeight);
    const Drawing drawing =
        Filled(quarry::FindOuterContours(data.Image, options.CellFillRate, options.MinContourAreaRate));
    FillGrid(drawing, cell, options.CellFillRate, *result->Mask);
    return result.HandOver();
}
