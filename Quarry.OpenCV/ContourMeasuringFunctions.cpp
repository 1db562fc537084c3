#include "Quarry.OpenCV/ContourMeasuringFunctions.h"

#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "Quarry.OpenCV/ForegroundBox.h"
#include "Quarry.OpenCV/RegionOf.h"

namespace {

/// The approximation method that gives chain codes instead of points.
constexpr int kChainCodes = 0;

constexpr int kLargestArea = 0;
constexpr int kLargestDiagonal = 1;

/// Computed in 32 bits; it wraps on overflow.
int32_t SquaredDiagonal(const cv::Size& box) {
    const auto width = static_cast<uint32_t>(box.width);
    const auto height = static_cast<uint32_t>(box.height);
    return static_cast<int32_t>(width * width + height * height);
}

double Score(const std::vector<cv::Point>& contour, int selectionMode) {
    if (selectionMode == kLargestArea) return cv::contourArea(contour, false);
    if (selectionMode == kLargestDiagonal) return SquaredDiagonal(cv::boundingRect(contour).size());
    return 0;
}

}  // namespace

std::vector<cv::Point> ContourMeasuringFunctions::GetObjectContour(cv::Rect rect, cv::Mat& mask, int method,
                                                                   int selectionMode) {
    // Not every release of OpenCV refuses these two. Chain codes would be returned as if they were points.
    CV_Assert(!mask.empty());
    CV_Assert(method != kChainCodes);
    cv::Mat region = quarry::RegionOf(mask, rect);
    const cv::Rect box = region.depth() == CV_8U ? quarry::ForegroundBox(region) : cv::Rect({}, region.size());
    // A copy, since some releases of OpenCV write into the image that they search.
    region = region(box).clone();
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(region, contours, cv::RETR_LIST, method);
    // The offset is added here, since findContours does not apply it with every method; and before the selection, since
    // OpenCV computes areas in single precision, so that they depend on the offset.
    for (std::vector<cv::Point>& contour : contours) {
        for (cv::Point& point : contour) point += box.tl();
    }
    return SelectContour(std::move(contours), selectionMode);
}

std::vector<cv::Point> ContourMeasuringFunctions::SelectContour(std::vector<std::vector<cv::Point>> contours,
                                                                int selectionMode) {
    double bestScore = 0;
    std::vector<cv::Point>* best = nullptr;
    for (std::vector<cv::Point>& contour : contours) {
        const double score = Score(contour, selectionMode);
        if (score > bestScore) {
            bestScore = score;
            best = &contour;
        }
    }
    return best == nullptr ? std::vector<cv::Point>() : std::move(*best);
}
