#pragma once

#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace quarry {

/// Signed distances of points from the straight line through p1 and p2. The sign is that of the cross product of
/// p2 - p1 and the vector from p1 to the point. A distance is not a number if p1 equals p2, or if rounding makes the
/// squared area negative. All steps are in single precision, except the root of the area and the division by the base.
class LineDistance {
public:
    LineDistance(const cv::Point2f& p1, const cv::Point2f& p2) : first(p1), second(p2), base(Length(p2 - p1)) {}

    /// Height of the triangle (p1, p2, q) over the side p1 p2, by Heron's formula.
    float operator()(const cv::Point2f& q) const {
        const float a = Length(q - first);
        const float b = Length(q - second);
        const float halfPerimeter = (a + b + base) / 2.0F;
        const float squaredArea = (halfPerimeter - a) * halfPerimeter * (halfPerimeter - b) * (halfPerimeter - base);
        const double area = std::sqrt(static_cast<double>(squaredArea));
        const auto distance = static_cast<float>(2.0 * area / static_cast<double>(base));
        const float cross = (second.x - first.x) * (q.y - first.y) - (second.y - first.y) * (q.x - first.x);
        return cross < 0.0F ? -distance : distance;
    }

private:
    static float Length(const cv::Point2f& vector) { return std::sqrt(vector.x * vector.x + vector.y * vector.y); }

    cv::Point2f first;
    cv::Point2f second;
    float base;
};

/// The position to which the flow moves the iterator's pixel.
inline cv::Point2f MovedPixel(const cv::Mat& flow, const cv::LineIterator& line) {
    const cv::Point pixel = line.pos();
    const auto& motion = flow.at<cv::Point2f>(pixel);
    return {static_cast<float>(pixel.x) + motion.x, static_cast<float>(pixel.y) + motion.y};
}

}  // namespace quarry
