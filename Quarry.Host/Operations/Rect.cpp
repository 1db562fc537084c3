#include "Operations/Rect.h"

#include "Operations/Call.h"

namespace quarry::host {

RectCutter::RectCutter(bool bilinear)
    : handle(Create(CreateCVRectExtractor, RectExtractorOptions{0, 0, static_cast<uint16_t>(bilinear ? 1 : 0)})) {}

cv::Mat RectCutter::Cut(const cv::Mat& picture, const TurnedRect& rect) {
    const auto narrow = [](int value) { return cv::saturate_cast<int16_t>(value); };
    const RectExtractorData input = {0,
                                     ImageOf(picture),
                                     narrow(rect.centre.x),
                                     narrow(rect.centre.y),
                                     narrow(rect.size.width),
                                     narrow(rect.size.height),
                                     rect.angle};
    return PictureOf(*Processed<RectExtractorResult>(handle, input)->Image);
}

}  // namespace quarry::host
