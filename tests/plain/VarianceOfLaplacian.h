#pragma once

#include <opencv2/imgproc.hpp>

/// The sharpness of a frame, in plain steps.
namespace quarry::plain {

inline double DeviationOfLaplacian(const cv::Mat& grey) {
    cv::Mat laplacian;
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::meanStdDev(laplacian, mean, deviation);
    return deviation[0];
}

inline cv::Mat GreyOf(const cv::Mat& frame) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    return grey;
}

inline float SharpnessOfGrey(const cv::Mat& grey) {
    const auto narrowed = static_cast<float>(DeviationOfLaplacian(grey));
    return narrowed * narrowed;
}

inline float Sharpness(const cv::Mat& frame) {
    return SharpnessOfGrey(GreyOf(frame));
}

}  // namespace quarry::plain
