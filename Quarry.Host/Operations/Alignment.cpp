#include "Operations/Alignment.h"

#include "Operations/Call.h"

namespace quarry::host {
namespace {

PointArray ArrayOf(Landmarks& points) {
    PointArray array{};
    array.PointsCount = static_cast<int32_t>(points.size());
    array.Points = points.data();
    return array;
}

}  // namespace

Aligner::Aligner(const cv::Size& size)
    : handle(Create(CreateCVAffineTransformProcessor, TransformOptions{0, 0, size.width, size.height})) {}

cv::Mat Aligner::Align(const cv::Mat& picture, const Landmarks& source, const Landmarks& destination) {
    Landmarks from = source;
    Landmarks to = destination;
    const AffineTransformData input = {0, ImageOf(picture), ArrayOf(to), ArrayOf(from)};
    return PictureOf(*Processed<TransformResult>(handle, input)->ResultImage);
}

}  // namespace quarry::host
