#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

/// Geometry that the operations share. Relative coordinates are fractions of the frame's width and height.
class CVHelper {
public:
    /// Makes an image refer to a matrix's pixels. No pixel is copied; `timestamp` does not change.
    static void CopyHeaderMatToImage(cv::Mat* mat, Image* image);

    /// The rectangle in pixels, truncated toward zero.
    static cv::Rect RelativeToAbsolute(RelRect rect, int width, int height);

    /// The point in relative coordinates. A coordinate is infinite or not a number if its side is 0.
    static cv::Point2f AbsoluteToRelative(cv::Point point, int width, int height);

    /// The linear function of t that is a at 0 and b at 0.5.
    static float LinearApprox(float a, float b, float t);

    /// A learning rate for a number of frames, interpolated linearly between the points of a fixed table.
    static float RateTableLinearApprox(int value);

    /// The 2 x 3 CV_64F matrix that puts the image's centre onto `center` and turns by `angle` degrees about it.
    static cv::Mat GetRotationMatrix(const cv::Mat& image, const cv::Point& center, double angle);

    /// Signed distances, in pixels, of a line's pixels from the straight line through p1 and p2 after the flow has
    /// moved them. The sign is that of the cross product of p2 - p1 and the vector from p1 to the moved pixel. A
    /// distance is not a number if p1 equals p2, or if rounding makes the squared area of the triangle of p1, p2 and
    /// the pixel negative, as it may close to an oblique line.
    /// @param flow  CV_32FC2, a displacement (x, y) per pixel
    /// @param line  iterates over pixels of `flow`
    /// @return one value per pixel of the line, in its order
    static std::vector<float> GetVectorProjectionOntoNormal(const cv::Mat& flow, const cv::Point2f& p1,
                                                            const cv::Point2f& p2, cv::LineIterator line);
};
