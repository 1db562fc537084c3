#include "Operations/ObjectContour.h"

#include "Operations/Call.h"

namespace quarry::host {
namespace {

/// The library cuts fractions of pixels off: half a pixel more keeps rounding from taking a whole one.
RelRect RelativeOf(const cv::Rect& place, const cv::Size& frame) {
    const auto share = [](int pixels, int all) {
        return static_cast<float>((pixels + 0.5) / static_cast<double>(all));
    };
    return {share(place.x, frame.width), share(place.y, frame.height), share(place.width, frame.width),
            share(place.height, frame.height)};
}

}  // namespace

ObjectContourFinder::ObjectContourFinder(const ObjectContourSettings& settings)
    : handle(Create(CreateCVContourCalculator, ContourCalcingOptions{0, 0, static_cast<int32_t>(settings.tracing),
                                                                     static_cast<int32_t>(settings.selection)})) {}

Outline ObjectContourFinder::Find(const cv::Mat& mask, const cv::Rect& place) {
    CV_Assert(mask.type() == CV_8UC1 && mask.isContinuous());
    const ContourCalcingInputData input = {0, {mask.data, mask.cols, mask.rows}, RelativeOf(place, mask.size())};
    return OutlineOf(*Processed<ContourResult>(handle, input)->Contour);
}

}  // namespace quarry::host
