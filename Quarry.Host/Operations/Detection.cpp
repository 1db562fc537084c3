#include "Operations/Detection.h"

#include <stdexcept>

#include "Console.h"
#include "Media.h"
#include "Operations/Call.h"
#include "Timing.h"

namespace quarry::host {
namespace {

constexpr double kNoLimit = -1;

double LimitOf(int size) {
    return size > 0 ? size : kNoLimit;
}

Handle Open(const DetectionSettings& settings) {
    CheckIsFile(settings.model);
    return Create(CreateCVCascadeClassifier,
                  ClassificationOptions{0, 0, LimitOf(settings.minSize), LimitOf(settings.maxSize), settings.mode,
                                        settings.model.c_str()});
}

/// What the library searches: it cuts off fractions of a pixel.
cv::Rect SearchedPart(const cv::Size& picture, const cv::Rect2f& area) {
    const auto width = static_cast<float>(picture.width);
    const auto height = static_cast<float>(picture.height);
    return {static_cast<int>(area.x * width), static_cast<int>(area.y * height), static_cast<int>(area.width * width),
            static_cast<int>(area.height * height)};
}

}  // namespace

Detector::Detector(const DetectionSettings& settings) try : handle(Open(settings)) {
    // The library tells only when it searches that it could make nothing of the file.
    constexpr int kSmallPicture = 64;
    Find(cv::Mat(kSmallPicture, kSmallPicture, CV_8UC3, cv::Scalar::all(0)));
} catch (const cv::Exception&) {
    throw Failure(settings.model + ": not a cascade model that can be read");
}

DetectionView Detector::Find(const cv::Mat& picture, const cv::Rect2f& area) {
    const cv::Rect searched = SearchedPart(picture.size(), area);
    if (searched.empty()) throw std::invalid_argument("the area is less than a pixel wide or high");
    RelRect relative = {area.x, area.y, area.width, area.height};
    const Stopwatch watch;
    const Processed<ClassificationResult> result(handle, ClassificationData{0, ImageOf(picture), 0, {}, 1, &relative});
    DetectionView view{{}, watch.Milliseconds()};
    for (int i = 0; i < result->Count; ++i) view.found.push_back(PixelsOf(result->Responses[i].Rect, searched));
    return view;
}

}  // namespace quarry::host
