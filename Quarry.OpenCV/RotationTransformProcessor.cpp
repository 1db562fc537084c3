#include "Quarry.OpenCV/RotationTransformProcessor.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry/Memory.h"

namespace {

/// The frame turned and scaled on its canvas.
cv::Mat Rotated(const cv::Mat& frame, double angle, double scale) {
    const cv::Point2f center(static_cast<float>((frame.cols - 1) * 0.5), static_cast<float>((frame.rows - 1) * 0.5));
    cv::Mat matrix = cv::getRotationMatrix2D(center, angle, scale);
    const cv::Size2f canvas =
        cv::RotatedRect(cv::Point2f(), cv::Size2f(frame.size()), static_cast<float>(angle)).boundingRect2f().size();
    matrix.at<double>(0, 2) += canvas.width * 0.5 - frame.cols * 0.5;
    matrix.at<double>(1, 2) += canvas.height * 0.5 - frame.rows * 0.5;
    cv::Mat rotated;
    cv::warpAffine(frame, rotated, matrix, cv::Size(cvRound(canvas.width), cvRound(canvas.height)), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT);
    return rotated;
}

}  // namespace

TransformResult RotationTransformProcessor::DoProcess(RotationTransformData data) {
    const Image& image = data.Frame;
    quarry::CheckFrameSize("TransformOptions", options.Width, options.Height);
    // The header comes before the check of the stride: OpenCV refuses null pixels.
    const cv::Mat frame = quarry::PackedFrame(image.data, options.Width, options.Height);
    quarry::CheckRoomForPackedFrame("RotationTransformData.Frame", options.Width, options.Height, image.stride);
    const cv::Mat rotated = Rotated(frame, data.Angle, data.Scale);
    quarry::PendingResult result(CreateTransformResult(options.Width, options.Height, image.stride, image.timestamp),
                                 DestroyTransformResult);
    cv::Mat resized = quarry::PackedFrame(*result->ResultImage);
    cv::resize(rotated, resized, resized.size(), 0, 0, cv::INTER_LINEAR);
    return result.HandOver();
}

void RotationTransformProcessor::DoDisposeData(TransformResult* result) {
    DestroyTransformResult(result);
}
