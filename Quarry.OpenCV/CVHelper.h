#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

/// Geometry that the operations share. Relative coordinates are fractions of the frame's width and height.
class CVHelper {
public:
    /// Points an image at a matrix's pixels; copies none of them and leaves `timestamp` as it is.
    static void CopyHeaderMatToImage(cv::Mat* mat, Image* image);

    /// Pixels, truncated toward zero.
    static cv::Rect RelativeToAbsolute(RelRect rect, int width, int height);

    /// Infinite or not a number where `width` or `height` is 0.
    static cv::Point2f AbsoluteToRelative(cv::Point point, int width, int height);

    /// The line that is a at 0 and b at 0.5.
    static float LinearApprox(float a, float b, float t);

    /// A learning rate for a number of frames: linear between the points of a fixed table.
    static float RateTableLinearApprox(int value);

    /// The 2 x 3 CV_64F matrix that puts the image's centre onto `center` and turns by `angle` degrees about it.
    static cv::Mat GetRotationMatrix(const cv::Mat& image, const cv::Point& center, double angle);

    /// How far each pixel of a line lies from the straight line through p1 and p2 once the flow has moved it, in
    /// pixels: negative on the side where the cross product with p2 - p1 is. Not a number where p1 equals p2,
    /// and where rounding leaves the squared area of a triangle with p1 and p2 below 0: pixels beside an oblique line.
    /// @param flow  two-channel floats, a displacement (x, y) per pixel
    /// @param line  over the pixels of `flow`
    /// @return one value per pixel of the line, in its order
    static std::vector<float> GetVectorProjectionOntoNormal(const cv::Mat& flow, const cv::Point2f& p1,
                                                            const cv::Point2f& p2, cv::LineIterator line);
};
