#include "Quarry.OpenCV/PixelwiseFire.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Quarry.OpenCV/FlameCandidates.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry/Memory.h"

namespace {

constexpr double kMinArea = 4.0;  // pixels, exclusive

void CheckSize(const Image& frame) {
    if (int64_t{frame.width} * frame.height <= std::numeric_limits<int32_t>::max()) return;
    throw std::invalid_argument("FireInputData.Frame: " + std::to_string(frame.width) + " x " +
                                std::to_string(frame.height) + " pixels; at most 2147483647 are allowed");
}

/// The rows from the first candidate to the last.
cv::Range RowsOf(const cv::Mat& candidates) {
    const uchar* const begin = candidates.data;
    const auto row = [&](const void* pixel) {
        return static_cast<int>((static_cast<const uchar*>(pixel) - begin) / candidates.cols);
    };
    const void* const first = std::memchr(begin, quarry::kFlame, candidates.total());
    if (first == nullptr) return {};
    return {row(first), row(memrchr(begin, quarry::kFlame, candidates.total())) + 1};
}

/// The contour of the largest region that the candidates form; empty when none is large enough.
std::vector<cv::Point> LargestRegion(const cv::Mat& candidates) {
    // The other rows hold no candidate, so the same contours are found without them, in the same order.
    const cv::Range rows = RowsOf(candidates);
    if (rows.empty()) return {};
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(candidates.rowRange(rows), contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE, {0, rows.start});
    double bestArea = 0;
    std::size_t best = 0;
    for (std::size_t i = 0; i < contours.size(); ++i) {
        const double area = cv::contourArea(contours[i], false);
        if (area > bestArea) {
            bestArea = area;
            best = i;
        }
    }
    return bestArea > kMinArea ? std::move(contours[best]) : std::vector<cv::Point>();
}

/// Draws a region, filled and dilated.
/// @param mask  zeros
void DrawGrown(const std::vector<cv::Point>& region, cv::Mat& mask) {
    constexpr int kReach = 5;
    constexpr int kIterations = 2;
    constexpr int kSide = 2 * kReach + 1;
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, {kSide, kSide}, {kReach, kReach});
    cv::drawContours(mask, std::vector<std::vector<cv::Point>>{region}, 0, cv::Scalar(quarry::kFlame), cv::FILLED);

    // Dilation changes no pixel beyond its reach, so only that part of the mask is dilated.
    constexpr int kGrowth = kReach * kIterations;
    const cv::Rect core = cv::boundingRect(region);
    const cv::Rect reached =
        cv::Rect(core.x - kGrowth, core.y - kGrowth, core.width + 2 * kGrowth, core.height + 2 * kGrowth) &
        cv::Rect({}, mask.size());
    const cv::Mat grown = mask(reached);
    cv::dilate(grown, grown, kernel, {-1, -1}, kIterations, cv::BORDER_CONSTANT);
}

}  // namespace

FireOutputData PixelwiseFireProcessor::DoProcess(FireInputData data) {
    const Image& image = data.Frame;
    CheckSize(image);
    const cv::Mat frame = quarry::PackedFrame(image);
    CV_Assert(!frame.empty());  // OpenCV would loop over millions of rows without pixels
    const std::vector<cv::Point> region = LargestRegion(quarry::FlameCandidates(frame));
    quarry::PendingResult result(CreateFireOutputData(image.width, image.height), DestroyFireOutputData);
    cv::Mat mask(image.height, image.width, CV_8UC1, result->FireMask->data, static_cast<std::size_t>(image.width));
    mask.setTo(0);
    if (!region.empty()) DrawGrown(region, mask);
    return result.HandOver();
}

void PixelwiseFireProcessor::DoDisposeData(FireOutputData* result) {
    DestroyFireOutputData(result);
}
