#pragma once

#include <cassert>
#include <opencv2/core.hpp>

#include "Quarry.Frame/Processor.h"
#include "Quarry.OpenCV/CheckArray.h"
#include "Quarry/Memory.h"

/// Aligns a frame to a layout of five points: warps it with the similarity transform (rotation, one scale, translation;
/// no reflection) that carries the source points onto the destination points with the least squared error (Umeyama,
/// IEEE TPAMI 13(4), 1991). Output pixels that map outside the frame are black.
///
/// Five equal destination points give a scale of 0. Five equal source points give a scale that is not a number, and
/// pixels without meaning. The process aborts if the numbers of points differ or are not 5.
///
/// Frame and points are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted.
/// The image belongs to the result, which the host gives back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `Points` is null, a size is negative, or the output has more than 2147483647 bytes
/// @throws std::bad_alloc         there is no memory for the output, or its number of bytes wraps to a negative 32-bit
///                                number
/// @throws cv::Exception          `data` is null while the frame is not empty, or the frame is empty or too large to
///                                warp
class AffineTransformProcessor : public Processor<TransformOptions, AffineTransformData, TransformResult> {
public:
    using Processor::Processor;

    TransformResult DoProcess(AffineTransformData inputData) override;
    void DoDisposeData(TransformResult* result) override { DestroyTransformResult(result); }

    /// Column means, one row.
    static cv::Mat meanAxis0(const cv::Mat& m);
    /// Subtracts a row from every row.
    static cv::Mat elementwiseMinus(const cv::Mat& m, const cv::Mat& row);
    /// Column variances, divided by the number of rows; one row.
    static cv::Mat varAxis0(const cv::Mat& m);
    /// Number of singular values that are not negligible.
    static int MatrixRank(const cv::Mat& m);
    /// The 3 x 3 matrix that carries the rows of src onto those of dst.
    /// @param src, dst  n x 2, CV_32F
    static cv::Mat similarTransform(const cv::Mat& src, const cv::Mat& dst);

private:
    /// One point per row, n x 2, CV_32F.
    /// @param field  the record's field of the points
    static cv::Mat MatrixOf(const char* field, const PointArray& points);
};
