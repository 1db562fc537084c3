#pragma once

#include <opencv2/imgproc.hpp>

#include "plain/VarianceOfLaplacian.h"

/// The sharpness of a face, in plain steps.
namespace quarry::plain {

/// The grey frame, black outside an ellipse.
inline cv::Mat Masked(const cv::Mat& frame, const cv::Point& center, const cv::Size& halfAxes) {
    const cv::Mat grey = GreyOf(frame);
    cv::Mat mask = cv::Mat::zeros(grey.size(), CV_8UC1);
    cv::ellipse(mask, center, halfAxes, 0.0, 0.0, 360.0, cv::Scalar(255), cv::FILLED);
    cv::Mat face;
    cv::bitwise_and(grey, mask, face);
    return face;
}

inline float FaceSharpness(const cv::Mat& frame, const cv::Point& center, const cv::Size& halfAxes) {
    return SharpnessOfGrey(Masked(frame, center, halfAxes));
}

}  // namespace quarry::plain
