#include <memory>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

using Points = std::vector<FloatPoint>;

/// Eyes, nose and corners of the mouth in an upright face of 112 x 112 pixels.
const Points kLayout = {{38.3F, 51.7F}, {73.5F, 51.5F}, {56.0F, 71.7F}, {41.5F, 92.4F}, {70.7F, 92.2F}};

cv::Mat MatrixOf(const Points& points) {
    cv::Mat matrix(static_cast<int>(points.size()), 2, CV_32F);
    for (int i = 0; i < matrix.rows; ++i) {
        matrix.at<float>(i, 0) = points[static_cast<std::size_t>(i)].X;
        matrix.at<float>(i, 1) = points[static_cast<std::size_t>(i)].Y;
    }
    return matrix;
}

cv::Mat Mean(const cv::Mat& m) {
    cv::Mat mean(1, m.cols, CV_32F);
    for (int column = 0; column < m.cols; ++column) {
        float sum = 0;
        for (int row = 0; row < m.rows; ++row) sum += m.at<float>(row, column);
        mean.at<float>(column) = sum / static_cast<float>(m.rows);
    }
    return mean;
}

cv::Mat Minus(const cv::Mat& m, const cv::Mat& row) {
    return m - cv::repeat(row, m.rows, 1);
}

cv::Mat Variance(const cv::Mat& m) {
    const cv::Mat deviation = Minus(m, Mean(m));
    cv::Mat square;
    cv::multiply(deviation, deviation, square);
    return Mean(square);
}

/// For points of which neither the ones nor the others lie on one line, and that are not mirrored.
cv::Mat SimilarTransform(const cv::Mat& src, const cv::Mat& dst) {
    const cv::Mat srcMean = Mean(src);
    const cv::Mat dstMean = Mean(dst);
    const cv::Mat srcDemean = Minus(src, srcMean);
    const cv::Mat dstDemean = Minus(dst, dstMean);
    const cv::Mat A = dstDemean.t() * srcDemean / src.rows;
    cv::Mat d = cv::Mat::ones(2, 1, CV_32F);
    if (cv::determinant(A) < 0) d.at<float>(1) = -1;
    cv::Mat T = cv::Mat::eye(3, 3, CV_32F);
    cv::Mat S;
    cv::Mat U;
    cv::Mat Vt;
    cv::SVD::compute(A, S, U, Vt);
    cv::Mat singularValues;
    cv::SVD::compute(A, singularValues);
    CV_Assert(cv::countNonZero(singularValues > 0.0001) == 2);
    cv::Mat rotation = T(cv::Rect(0, 0, 2, 2));
    rotation = U * cv::Mat::diag(d) * Vt;
    cv::Mat scaled;
    cv::multiply(S, d, scaled);
    const double scale = cv::sum(scaled)[0] / cv::sum(Variance(srcDemean))[0];
    T(cv::Rect(2, 0, 1, 2)) = dstMean.t() - scale * (rotation * srcMean.t());
    rotation *= scale;
    return T;
}

cv::Mat Plain(const cv::Mat& frame, const Points& src, const Points& dst, const cv::Size& size) {
    cv::Mat aligned;
    cv::warpAffine(frame, aligned, SimilarTransform(MatrixOf(src), MatrixOf(dst)).rowRange(0, 2), size,
                   cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    return aligned;
}

/// The layout in a frame, turned by a quarter of a right angle.
Points Turned(const cv::Mat& frame, float scale) {
    Points points;
    for (const FloatPoint& point : kLayout) {
        const float x = (point.X - 56) * scale;
        const float y = (point.Y - 56) * scale;
        points.push_back({static_cast<float>(frame.cols) / 2 + 0.924F * x - 0.383F * y,
                          static_cast<float>(frame.rows) / 2 + 0.383F * x + 0.924F * y});
    }
    return points;
}

/// @param scale  of the face in the output to that of 112 x 112 pixels
void CompareOn(const cv::Mat& frame, const std::string& name, const std::string& input, const cv::Size& size,
               float scale) {
    const auto dst = std::make_shared<Points>(kLayout);
    for (FloatPoint& point : *dst) point = {point.X * scale, point.Y * scale};
    const auto src = std::make_shared<Points>(Turned(frame, 1.5F));
    Compare("AffineTransformProcessor", {name, input, 0.98},
            Computed([frame, src, dst, size] { return Plain(frame, *src, *dst, size); }),
            Called<TransformOptions, AffineTransformData, TransformResult>(
                CreateCVAffineTransformProcessor, {0, 0, size.width, size.height},
                {0, ImageOf(frame), {{5}, dst->data()}, {{5}, src->data()}}, [size](const TransformResult& result) {
                    return BytesOf(cv::Mat(size, CV_8UC3, result.ResultImage->data));
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(MovingSquare(640, 480, 0), "face", "640x480", {112, 112}, 1);
    CompareOn(MovingSquare(640, 480, 0), "frame", "640x480", {640, 480}, 4);
    CompareOn(MovingSquare(1920, 1080, 0), "face", "1920x1080", {112, 112}, 1);
    CompareOn(MovingSquare(1920, 1080, 0), "frame", "1920x1080", {1920, 1080}, 9);
    return Run(argc, argv);
}
