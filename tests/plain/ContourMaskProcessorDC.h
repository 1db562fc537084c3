#pragma once

#include <cstdint>
#include <vector>

#include "plain/Steps.h"

/// The grid of occupied cells, in plain steps.
namespace quarry::plain {

/// The outlines of a frame that are not small, filled.
inline cv::Mat FilledBlobs(const cv::Mat& frame, float fillRate, float minAreaRate) {
    cv::Mat drawing = cv::Mat::zeros(frame.size(), CV_8UC1);
    const std::vector<PixelContour> blobs = BlobsOf(frame, fillRate, minAreaRate);
    for (int i = 0; i < static_cast<int>(blobs.size()); ++i) {
        cv::drawContours(drawing, blobs, i, cv::Scalar(255), cv::FILLED);
    }
    return drawing;
}

/// Row by row, 1 for each cell of which more than the rate is filled.
inline std::vector<uint8_t> OccupiedCells(const cv::Mat& drawing, const cv::Size& grid, float fillRate) {
    const cv::Size cell(drawing.cols / grid.width, drawing.rows / grid.height);
    const int threshold = TruncatedProduct(fillRate, cell.area());
    std::vector<uint8_t> cells;
    for (int row = 0; row < grid.height; ++row) {
        for (int column = 0; column < grid.width; ++column) {
            const cv::Rect place(cv::Point(column * cell.width, row * cell.height), cell);
            const int count = place.empty() ? 0 : cv::countNonZero(drawing(place));
            cells.push_back(count > threshold ? 1 : 0);
        }
    }
    return cells;
}

}  // namespace quarry::plain
