#include "Quarry.OpenCV/AffineTransformProcessor.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/PendingResult.h"

TransformResult AffineTransformProcessor::DoProcess(AffineTransformData inputData) {
    // The line number of each of these two assertions is part of the interface.
    assert(inputData.SrcPoints.PointsCount == inputData.DstPoints.PointsCount);
    assert(inputData.SrcPoints.PointsCount == 5);
    const Image& image = inputData.Frame;
    const int64_t stride = int64_t{options.Width} * quarry::kFrameChannels;
    quarry::CheckFrameSize("AffineTransformData.Frame", image.width, image.height);
    quarry::CheckFrameSize("TransformOptions", options.Width, options.Height);
    quarry::CheckRoomForPackedFrame("TransformOptions", options.Width, options.Height, stride);
    const cv::Mat src = MatrixOf("AffineTransformData.SrcPoints.Points", inputData.SrcPoints);
    const cv::Mat dst = MatrixOf("AffineTransformData.DstPoints.Points", inputData.DstPoints);

    const cv::Mat matrix = similarTransform(src, dst).rowRange(0, 2);
    const cv::Mat frame = quarry::PackedFrame(image);
    quarry::PendingResult result(
        CreateTransformResult(options.Width, options.Height, static_cast<int>(stride), image.timestamp),
        DestroyTransformResult);
    cv::Mat aligned = quarry::PackedFrame(*result->ResultImage);
    cv::warpAffine(frame, aligned, matrix, aligned.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    return result.HandOver();
}

cv::Mat AffineTransformProcessor::meanAxis0(const cv::Mat& m) {
    cv::Mat mean(1, m.cols, CV_32F);
    for (int column = 0; column < m.cols; ++column) {
        float sum = 0;
        for (int row = 0; row < m.rows; ++row) sum += m.at<float>(row, column);
        mean.at<float>(column) = sum / static_cast<float>(m.rows);
    }
    return mean;
}

cv::Mat AffineTransformProcessor::elementwiseMinus(const cv::Mat& m, const cv::Mat& row) {
    return m - cv::repeat(row, m.rows, 1);
}

cv::Mat AffineTransformProcessor::varAxis0(const cv::Mat& m) {
    const cv::Mat deviation = elementwiseMinus(m, meanAxis0(m));
    cv::Mat square;
    cv::multiply(deviation, deviation, square);
    return meanAxis0(square);
}

int AffineTransformProcessor::MatrixRank(const cv::Mat& m) {
    constexpr double kNegligible = 0.0001;
    cv::Mat singularValues;
    cv::SVD::compute(m, singularValues);
    return cv::countNonZero(singularValues > kNegligible);
}

cv::Mat AffineTransformProcessor::similarTransform(const cv::Mat& src, const cv::Mat& dst) {
    const int dim = src.cols;
    const cv::Mat srcMean = meanAxis0(src);
    const cv::Mat dstMean = meanAxis0(dst);
    const cv::Mat srcDemean = elementwiseMinus(src, srcMean);
    const cv::Mat dstDemean = elementwiseMinus(dst, dstMean);
    const cv::Mat A = dstDemean.t() * srcDemean / src.rows;

    cv::Mat d = cv::Mat::ones(dim, 1, CV_32F);
    if (cv::determinant(A) < 0) d.at<float>(dim - 1) = -1;

    cv::Mat T = cv::Mat::eye(dim + 1, dim + 1, CV_32F);
    cv::Mat rotation = T(cv::Rect(0, 0, dim, dim));
    cv::Mat S;
    cv::Mat U;
    cv::Mat Vt;
    cv::SVD::compute(A, S, U, Vt);
    const int rank = MatrixRank(A);
    if (rank == dim - 1) {
        // Points on a line determine one axis only. The other axis is chosen so that the matrix is a rotation.
        cv::Mat signs = cv::Mat::ones(dim, 1, CV_32F);
        if (!(cv::determinant(U) * cv::determinant(Vt) > 0)) signs.at<float>(dim - 1) = -1;
        rotation = U * cv::Mat::diag(signs) * Vt;
    } else if (rank != 0) {
        rotation = U * cv::Mat::diag(d) * Vt;
    }

    cv::Mat scaled;
    cv::multiply(S, d, scaled);
    const double scale = cv::sum(scaled)[0] / cv::sum(varAxis0(srcDemean))[0];
    T(cv::Rect(dim, 0, 1, dim)) = dstMean.t() - scale * (rotation * srcMean.t());
    rotation *= scale;
    return T;
}

cv::Mat AffineTransformProcessor::MatrixOf(const char* field, const PointArray& points) {
    quarry::CheckArray(field, points.Points, points.PointsCount, "points");
    cv::Mat matrix(points.PointsCount, 2, CV_32F);
    for (int i = 0; i < points.PointsCount; ++i) {
        matrix.at<float>(i, 0) = points.Points[i].X;
        matrix.at<float>(i, 1) = points.Points[i].Y;
    }
    return matrix;
}
