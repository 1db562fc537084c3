#include "Quarry.OpenCV/CascadeClassifier.h"

#include <algorithm>
#include <array>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/RegionOf.h"
#include "Quarry.OpenCV/Truncate.h"

namespace {

/// A square of whole pixels. A negative side gives an empty size, which sets no limit.
cv::Size Square(double side) {
    if (side < 0) return {};
    return {quarry::Truncate(side), quarry::Truncate(side)};
}

}  // namespace

CascadeClassifier::CascadeClassifier(ClassificationOptions* source)
    : ClassificationProcessor(source),
      preset(PresetOf(options)),
      minSize(Square(options.MinSize)),
      maxSize(Square(options.MaxSize)) {
    if (options.CascadePath == nullptr) {
        throw std::invalid_argument("ClassificationOptions.CascadePath is null; the path of a model file is needed");
    }
    cascade.load(options.CascadePath);  // Process reports a missing file, not this constructor: hosts rely on it
}

const CascadeClassifier::Preset& CascadeClassifier::PresetOf(const ClassificationOptions& options) {
    static constexpr std::array kPresets = {
        Preset{1.1, 5, cv::CASCADE_SCALE_IMAGE}, Preset{1.1, 1, cv::CASCADE_SCALE_IMAGE},
        Preset{1.1, 2, cv::CASCADE_DO_CANNY_PRUNING + cv::CASCADE_FIND_BIGGEST_OBJECT}};
    if (options.Mode >= kPresets.size()) {
        throw std::invalid_argument("ClassificationOptions.Mode is " + std::to_string(options.Mode) +
                                    "; 0, 1 or 2 is allowed");
    }
    return kPresets[options.Mode];
}

ClassificationResult CascadeClassifier::DoProcess(ClassificationData data) {
    if (data.Areas == nullptr) {
        throw std::invalid_argument("ClassificationData.Areas is null; one area is needed");
    }
    const cv::Mat frame = quarry::PackedFrame(data.Frame);
    const cv::Rect area = CVHelper::RelativeToAbsolute(*data.Areas, data.Frame.width, data.Frame.height);
    cv::Mat grey;
    cv::cvtColor(quarry::RegionOf(frame, area), grey, cv::COLOR_BGR2GRAY);

    std::vector<cv::Rect> objects;
    cascade.detectMultiScale(grey, objects, preset.scaleFactor, preset.minNeighbors, preset.flags, minSize, maxSize);
    return CreateClassificationResult(static_cast<int>(objects.size()), GetRects(objects, area.size()).get());
}

std::unique_ptr<RelRect[]> CascadeClassifier::GetRects(const std::vector<cv::Rect>& rectangles, const cv::Size& size) {
    const auto width = static_cast<float>(size.width);
    const auto height = static_cast<float>(size.height);
    auto relative = std::make_unique<RelRect[]>(rectangles.size());
    std::transform(rectangles.begin(), rectangles.end(), relative.get(), [&](const cv::Rect& rect) {
        return RelRect{static_cast<float>(rect.x) / width, static_cast<float>(rect.y) / height,
                       static_cast<float>(rect.width) / width, static_cast<float>(rect.height) / height};
    });
    return relative;
}
