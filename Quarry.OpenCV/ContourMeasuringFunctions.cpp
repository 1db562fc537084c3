#include "Quarry.OpenCV/ContourMeasuringFunctions.h"

#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "Quarry.OpenCV/ForegroundBox.h"
#include "Quarry.OpenCV/RegionOf.h"

namespace {

/// What OpenCV's approximation methods begin with.
constexpr int kChainCodes = 0;

constexpr int kLargestArea = 0;
constexpr int kLargestDiagonal = 1;

/// In 32 bits, wrapping.
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
    // Not every release of OpenCV refuses these. Chain codes would come out as points, which they are not.
    CV_Assert(!mask.empty());
    CV_Assert(method != kChainCodes);
    cv::Mat region = quarry::RegionOf(mask, rect);
    const cv::Rect box = region.depth() == CV_8U ? quarry::ForegroundBox(region) : cv::Rect({}, region.size());
    // A copy, since some releases of OpenCV write into the image that they search.
    region = region(box).clone();
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(region, contours, cv::RETR_LIST, method);
    // Moved here, since not every method takes an offset; and before the choice, since OpenCV takes areas in single
    // precision.
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
