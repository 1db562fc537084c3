#include "Quarry.OpenCV/ContourMaskProcessorDC.h"

#include <cstdint>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/OuterContours.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/Memory.h"

namespace {

void CheckGrid(int width, int height) {
    if (width >= 1 && height >= 1 && int64_t{width} * height <= std::numeric_limits<int32_t>::max()) return;
    throw std::invalid_argument("ContourMaskProcessorData.GridWidth x GridHeight is " + std::to_string(width) + " x " +
                                std::to_string(height) +
                                "; each must be 1 or more, and their product at most 2147483647");
}

cv::Mat Drawing(const cv::Size& size, const std::vector<std::vector<cv::Point>>& contours) {
    const cv::Scalar drawn(255, 0, 0, 0);
    cv::Mat drawing = cv::Mat::zeros(size, CV_8UC1);
    for (int i = 0; i < static_cast<int>(contours.size()); ++i) {
        cv::drawContours(drawing, contours, i, drawn, cv::FILLED);
    }
    return drawing;
}

}  // namespace

ContourMaskProcessorResult ContourMaskProcessorDC::DoProcess(ContourMaskProcessorData data) {
    CheckGrid(data.GridWidth, data.GridHeight);
    quarry::PendingResult result(CreateContourMaskProcessorResult(data.GridWidth, data.GridHeight),
                                 DestroyContourMaskProcessorResult);
    const cv::Mat grey = quarry::GreyOfRgb(data.Image);
    FillGrid(Drawing(grey.size(), GetContours(grey, options.MinContourAreaRate)), *result->Mask);
    return result.HandOver();
}

std::vector<std::vector<cv::Point>> ContourMaskProcessorDC::GetContours(const cv::Mat& image, float minAreaRate) const {
    return quarry::GetValidContours(quarry::FindOuterContours(image, options.CellFillRate), minAreaRate,
                                    static_cast<float>(image.rows * image.cols));
}

void ContourMaskProcessorDC::FillGrid(const cv::Mat& drawing, const Mask& grid) const {
    const cv::Size cell(drawing.cols / grid.width, drawing.rows / grid.height);
    const int threshold = quarry::Truncate(static_cast<float>(cell.area()) * options.CellFillRate);
    uint8_t* out = grid.data;
    for (int row = 0; row < grid.height; ++row) {
        for (int column = 0; column < grid.width; ++column) {
            const cv::Point corner(column * cell.width, row * cell.height);
            const int count = cell.empty() ? 0 : cv::countNonZero(drawing(cv::Rect(corner, cell)));
            *out++ = count > threshold ? 1 : 0;
        }
    }
}
