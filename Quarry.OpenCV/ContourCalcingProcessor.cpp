#include "Quarry.OpenCV/ContourCalcingProcessor.h"

#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/ContourMeasuringFunctions.h"
#include "Quarry.OpenCV/RelativePoints.h"
#include "Quarry/Memory.h"

namespace {

void Measure(const std::vector<cv::Point>& points, const cv::Size& frame, Contour* contour) {
    if (points.empty()) return;
    const auto width = static_cast<float>(frame.width);
    const auto height = static_cast<float>(frame.height);
    contour->Area = static_cast<float>(cv::contourArea(points, false)) / (height * width);
    contour->Perimeter = static_cast<float>(cv::arcLength(points, true)) / width;
}

}  // namespace

ContourResult ContourCalcingProcessor::DoProcess(ContourCalcingInputData data) {
    const Mask& object = data.ObjectMask;
    cv::Mat mask(object.height, object.width, CV_8UC1, object.data, static_cast<std::size_t>(object.width));
    const cv::Rect rect = CVHelper::RelativeToAbsolute(data.ObjectRect, object.width, object.height);
    const std::vector<cv::Point> points =
        ContourMeasuringFunctions::GetObjectContour(rect, mask, options.ApproximationMethod, options.SelectionMode);

    const ContourResult result = CreateContourResult(static_cast<int>(points.size()));
    Measure(points, mask.size(), result.Contour);
    quarry::WriteRelativePoints(points, rect.tl(), mask.size(), result.Contour->Points);
    return result;
}

void ContourCalcingProcessor::DoDisposeData(ContourResult* result) {
    DestroyContourResult(result);
}
