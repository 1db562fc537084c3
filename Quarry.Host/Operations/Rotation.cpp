#include "Operations/Rotation.h"

#include "Operations/Call.h"

namespace quarry::host {

Rotator::Rotator(const cv::Size& size_)
    : size(size_),
      handle(Create(CreateCVRotationTransformProcessor, TransformOptions{0, 0, size_.width, size_.height})) {}

cv::Mat Rotator::Rotate(const cv::Mat& picture, double angle, double scale) {
    CV_Assert(picture.size() == size);
    const RotationTransformData input = {0, ImageOf(picture), angle, scale};
    return PictureOf(*Processed<TransformResult>(handle, input)->ResultImage);
}

}  // namespace quarry::host
