#include "Quarry.OpenCV/VarianceOfLaplacian.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"

float quarry::VarianceOfLaplacian(const cv::Mat& grey) {
    cv::Mat laplacian;
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    // The square of the narrowed deviation, not the narrowed variance: they differ in the last bits.
    const auto narrowed = static_cast<float>(deviation[0]);
    return narrowed * narrowed;
}

VoLOutputData VarianceOfLaplacianProcessor::DoProcess(VoLInputData data) {
    cv::Mat grey;
    cv::cvtColor(quarry::PackedFrame(data.Image), grey, cv::COLOR_BGR2GRAY);
    return {0, quarry::VarianceOfLaplacian(grey)};
}
