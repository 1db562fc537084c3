#include "Quarry.OpenCV/HogSvmHumanClassifier.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/CheckArray.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/RegionOf.h"
#include "Quarry.OpenCV/Truncate.h"

namespace {

constexpr double kWeightThreshold = 0.0;
constexpr double kHitThreshold = 0.0;
constexpr double kFinalThreshold = 2.0;

bool Contains(const cv::Rect& outer, const cv::Rect& inner) {
    return (outer & inner) == inner;
}

}  // namespace

HogSvmHumanClassifier::HogSvmHumanClassifier(ClassificationOptions* source) : ClassificationProcessor(source) {
    descriptor.setSVMDetector(cv::HOGDescriptor::getDefaultPeopleDetector());
    CalcInternalParametrs(static_cast<double>(options.Sensitivity));
}

ClassificationResult HogSvmHumanClassifier::DoProcess(ClassificationData data) {
    if (cv::Size(data.Frame.width, data.Frame.height) != frameSize) ReInit(data.Frame.width, data.Frame.height);
    std::vector<cv::Rect> areas;
    PrepareAreas(areas, data);
    foundRectangles.clear();
    foundWeights.clear();
    FindResponse(data.Frame, areas);
    ClassificationResult result = CreateClassificationResult(static_cast<int>(foundRectangles.size()));
    PrepareResult(result, foundRectangles, foundWeights);
    return result;
}

void HogSvmHumanClassifier::CalcInternalParametrs(double sensitivity) {
    struct Search {
        double below;  // sensitivity
        int stride;    // pixels
        double scale;
    };
    constexpr Search kSearches[] = {{0.25, 16, 1.15}, {0.5, 8, 1.12}, {0.75, 4, 1.1}};
    Search search = {0, 2, 1.05};
    for (const Search& coarser : kSearches) {
        if (sensitivity >= coarser.below) continue;  // false for not-a-number, which gets the coarsest search
        search = coarser;
        break;
    }
    windowStride = {search.stride, search.stride};
    scale = search.scale;
}

void HogSvmHumanClassifier::ReInit(int width, int height) {
    CV_Assert(width >= 0 && height >= 0);
    frameSize = {width, height};
    minHeight = std::max(quarry::Truncate(options.MinSize * height), descriptor.winSize.height);
    maxHeight = quarry::Truncate(height * options.MaxSize);
}

void HogSvmHumanClassifier::PrepareAreas(std::vector<cv::Rect>& areas, ClassificationData data) const {
    const auto toPixels = [&](const RelRect& area) {
        return CVHelper::RelativeToAbsolute(area, frameSize.width, frameSize.height);
    };
    if (data.WholeFrame == 1) {
        areas = {toPixels({0, 0, 1, 1})};
        return;
    }
    if (data.AreasCount < 0) {
        throw std::invalid_argument("ClassificationData.AreasCount is " + std::to_string(data.AreasCount) +
                                    "; 0 or more is allowed");
    }
    quarry::CheckArray("ClassificationData.Areas", data.Areas, data.AreasCount, "areas");
    areas.resize(static_cast<std::size_t>(data.AreasCount));
    std::transform(data.Areas, data.Areas + data.AreasCount, areas.begin(), toPixels);
}

void HogSvmHumanClassifier::FindResponse(const Image& frame, std::vector<cv::Rect>& areas) {
    std::vector<cv::Rect> rectangles;
    std::vector<double> weights;
    for (const cv::Rect& area : areas) {
        if (area.height <= minHeight || area.width <= descriptor.winSize.width) continue;
        const cv::Mat searched = quarry::RegionOf(quarry::PackedFrame(frame), area);
        descriptor.detectMultiScale(searched, rectangles, weights, kHitThreshold, windowStride, cv::Size(), scale,
                                    kFinalThreshold, false);
        Filter(area, rectangles, weights);
    }
}

void HogSvmHumanClassifier::Filter(const cv::Rect& area, const std::vector<cv::Rect>& rectangles,
                                   const std::vector<double>& weights) {
    const std::vector<bool> contained = FindContained(rectangles);
    for (std::size_t j = 0; j < rectangles.size(); ++j) {
        const bool fits = minHeight <= rectangles[j].height && rectangles[j].height <= maxHeight;
        if (contained[j] || !fits || !(weights[j] >= kWeightThreshold)) continue;
        foundRectangles.push_back(rectangles[j] + area.tl());
        foundWeights.push_back(weights[j]);
    }
}

std::vector<bool> HogSvmHumanClassifier::FindContained(const std::vector<cv::Rect>& rectangles) {
    // Sorted by the left side: a rectangle that contains `inner` starts between inner.br().x - widest and inner.x, so
    // only those are compared.
    std::vector<std::size_t> order(rectangles.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return rectangles[a].x < rectangles[b].x; });
    int widest = 0;
    for (const cv::Rect& rectangle : rectangles) widest = std::max(widest, rectangle.width);

    std::vector<bool> contained(rectangles.size());
    for (const std::size_t j : order) {
        const cv::Rect& inner = rectangles[j];
        const auto first =
            std::lower_bound(order.begin(), order.end(), inner.br().x - widest,
                             [&](std::size_t candidate, int left) { return rectangles[candidate].x < left; });
        for (auto k = first; k != order.end() && rectangles[*k].x <= inner.x && !contained[j]; ++k) {
            contained[j] = *k != j && Contains(rectangles[*k], inner);
        }
    }
    return contained;
}

void HogSvmHumanClassifier::PrepareResult(ClassificationResult& result, const std::vector<cv::Rect>& found,
                                          const std::vector<double>& weights) const {
    const auto width = static_cast<double>(frameSize.width);
    const auto height = static_cast<double>(frameSize.height);
    for (std::size_t i = 0; i < found.size(); ++i) {
        Response& response = result.Responses[i];
        response.Rect.X = static_cast<float>(found[i].x / width);
        response.Rect.Y = static_cast<float>(found[i].y / height);
        response.Rect.Width = static_cast<float>(found[i].width / width);
        response.Rect.Height = static_cast<float>(found[i].height / height);
        response.Weight = weights[i];
    }
}
