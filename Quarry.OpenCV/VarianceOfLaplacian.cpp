#include "Quarry.OpenCV/VarianceOfLaplacian.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"

VoLOutputData VarianceOfLaplacianProcessor::DoProcess(VoLInputData data) {
    cv::Mat grey;
    cv::cvtColor(quarry::PackedFrame(data.Image), grey, cv::COLOR_BGR2GRAY);
    cv::Mat laplacian;
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    // The square of the narrowed deviation, not the narrowed variance: they differ in the last bits.
    const auto narrowed = static_cast<float>(deviation[0]);
    return {0, narrowed * narrowed};
}
