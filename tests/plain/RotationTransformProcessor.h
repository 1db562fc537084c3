#pragma once

#include <opencv2/imgproc.hpp>

/// A turned frame, in plain steps.
namespace quarry::plain {

inline cv::Size2f BoxOf(const cv::Size& frame, double angle) {
    return cv::RotatedRect(cv::Point2f(), cv::Size2f(frame), static_cast<float>(angle)).boundingRect2f().size();
}

/// The frame on a canvas of a given size, before it is resized.
inline cv::Mat OnCanvas(const cv::Mat& frame, double angle, double scale, const cv::Size& canvas) {
    const cv::Point2f center(static_cast<float>((frame.cols - 1) * 0.5), static_cast<float>((frame.rows - 1) * 0.5));
    const cv::Size2f box = BoxOf(frame.size(), angle);
    cv::Mat matrix = cv::getRotationMatrix2D(center, angle, scale);
    matrix.at<double>(0, 2) += static_cast<double>(box.width) * 0.5 - frame.cols * 0.5;
    matrix.at<double>(1, 2) += static_cast<double>(box.height) * 0.5 - frame.rows * 0.5;
    cv::Mat out;
    cv::warpAffine(frame, out, matrix, canvas, cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    return out;
}

inline cv::Mat Resized(const cv::Mat& canvas, const cv::Size& size) {
    cv::Mat out;
    cv::resize(canvas, out, size, 0, 0, cv::INTER_LINEAR);
    return out;
}

/// The canvas has the size of the box about the turned frame, to the nearest pixels, halves to the even one.
inline cv::Mat Turned(const cv::Mat& frame, double angle, double scale) {
    const cv::Size2f box = BoxOf(frame.size(), angle);
    return Resized(OnCanvas(frame, angle, scale, {cvRound(box.width), cvRound(box.height)}), frame.size());
}

}  // namespace quarry::plain
