#include "Quarry.OpenCV/FaceVarianceOfLaplacian.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/VarianceOfLaplacian.h"

VoLOutputData FaceVarianceOfLaplacianProcessor::DoProcess(FaceVoLInputData data) {
    cv::Mat grey;
    cv::cvtColor(quarry::PackedFrame(data.Image), grey, cv::COLOR_BGR2GRAY);
    cv::Mat mask = cv::Mat::zeros(grey.size(), CV_8UC1);
    cv::ellipse(mask, {data.FaceX, data.FaceY}, {data.FaceWidth, data.FaceHeight}, 0.0, 0.0, 360.0, cv::Scalar(255),
                cv::FILLED);
    cv::Mat face;
    cv::bitwise_and(grey, mask, face);
    return {0, quarry::VarianceOfLaplacian(face)};
}
