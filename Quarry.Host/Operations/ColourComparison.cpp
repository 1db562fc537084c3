#include "Operations/ColourComparison.h"

#include "Operations/Call.h"

namespace quarry::host {

cv::Rect PixelsOf(const RelativeArea& area, const cv::Size& size) {
    const auto pixels = [](float share, int side) { return static_cast<int>(share * static_cast<float>(side)); };
    return {pixels(area.x, size.width), pixels(area.y, size.height), pixels(area.width, size.width),
            pixels(area.height, size.height)};
}

ColourComparer::ColourComparer(ColourMeasure measure)
    : handle(Create(CreateCVColorComparator, ColorComparingOptions{0, 0, static_cast<int32_t>(measure)})) {}

double ColourComparer::Compare(const cv::Mat& first, const cv::Mat& second, const RelativeArea& area) {
    const ColorComparingInputData input = {
        0, ImageOf(first), ImageOf(second), {area.x, area.y, area.width, area.height}};
    return Processed<ColorComparingOutputData>(handle, input)->Similarity;
}

}  // namespace quarry::host
