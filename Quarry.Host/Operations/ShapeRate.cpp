#include "Operations/ShapeRate.h"

#include <limits>

#include "Operations/Call.h"

namespace quarry::host {
namespace {

/// Shapes that cannot be compared are as far apart as numbers go; nothing else comes near.
constexpr double kBeyondCompare = 1e200;

}  // namespace

ShapeRateMeter::ShapeRateMeter(int32_t method)
    : handle(Create(CreateCVContourRateCalculator, ContourRateMeasuringOptions{0, 0, method})) {}

double ShapeRateMeter::Measure(const Polygon& before, const Polygon& after, const cv::Size& frame,
                               double milliseconds) {
    CV_Assert(!before.empty() && !after.empty() && !frame.empty() && milliseconds > 0);
    ContourRecord previous(before);
    ContourRecord current(after);
    const ContourRateMeasuringInputData input = {
        0, current.Get(), previous.Get(), static_cast<int16_t>(frame.width), static_cast<int16_t>(frame.height),
        0, milliseconds};
    const double rate = Processed<ContourRateMeasuringOutputData>(handle, input)->Rate;
    return rate < kBeyondCompare ? rate : std::numeric_limits<double>::infinity();
}

}  // namespace quarry::host
