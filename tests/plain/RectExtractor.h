#pragma once

#include <cmath>
#include <opencv2/imgproc.hpp>

/// An upright rectangle of a turned part of a frame, in plain steps.
namespace quarry::plain {

struct Cut {
    int centerX, centerY, width, height;
    double angle;  ///< degrees
};

inline cv::Mat WarpedBy(const cv::Mat& frame, const Cut& cut, double radians, int interpolation) {
    const int halfWidth = cut.width / 2;
    const int halfHeight = cut.height / 2;
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    const cv::Matx23d matrix(c, -s, cut.centerX - (c * halfWidth - s * halfHeight),  //
                             s, c, cut.centerY - (s * halfWidth + c * halfHeight));
    cv::Mat out;
    cv::warpAffine(frame, out, matrix, {cut.width, cut.height}, interpolation | cv::WARP_INVERSE_MAP,
                   cv::BORDER_CONSTANT);
    return out;
}

inline double RadiansInSingle(double degrees) {
    return static_cast<double>(static_cast<float>(degrees * CV_PI / 180.0));
}

/// The angle in single precision, as degrees and then as radians.
inline cv::Mat Extracted(const cv::Mat& frame, const Cut& cut, int interpolation) {
    return WarpedBy(frame, cut, RadiansInSingle(static_cast<double>(static_cast<float>(cut.angle))), interpolation);
}

}  // namespace quarry::plain
