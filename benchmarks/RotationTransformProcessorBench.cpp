#include <opencv2/imgproc.hpp>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

constexpr double kDegrees = 30;
constexpr double kScale = 1.0;

cv::Mat Plain(const cv::Mat& frame) {
    const cv::Point2f center(static_cast<float>((frame.cols - 1) * 0.5), static_cast<float>((frame.rows - 1) * 0.5));
    cv::Mat matrix = cv::getRotationMatrix2D(center, kDegrees, kScale);
    const cv::RotatedRect turned(cv::Point2f(), cv::Size2f(frame.size()), static_cast<float>(kDegrees));
    const cv::Size2f canvas = turned.boundingRect2f().size();
    matrix.at<double>(0, 2) += canvas.width * 0.5 - frame.cols * 0.5;
    matrix.at<double>(1, 2) += canvas.height * 0.5 - frame.rows * 0.5;
    cv::Mat rotated;
    cv::Mat resized;
    cv::warpAffine(frame, rotated, matrix, {cvRound(canvas.width), cvRound(canvas.height)}, cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT);
    cv::resize(rotated, resized, frame.size(), 0, 0, cv::INTER_LINEAR);
    return resized;
}

void CompareOn(int width, int height, const std::string& input) {
    const cv::Mat frame = MovingSquare(width, height, 0);
    Compare("RotationTransformProcessor", {"", input, 0.98}, Computed([frame] { return Plain(frame); }),
            Called<TransformOptions, RotationTransformData, TransformResult>(
                CreateCVRotationTransformProcessor, {0, 0, width, height}, {0, ImageOf(frame), kDegrees, kScale},
                [size = frame.size()](const TransformResult& result) {
                    return BytesOf(cv::Mat(size, CV_8UC3, result.ResultImage->data));
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(640, 480, "640x480");
    CompareOn(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
