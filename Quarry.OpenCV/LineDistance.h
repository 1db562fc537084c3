#pragma once

#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace quarry {

/// How far points lie from the straight line through two others, negative on the side where the cross product with its
/// direction is. Single precision throughout, but for the root of the area. Not a number where the two are equal, and
/// where rounding leaves the squared area below 0.
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

/// Where the flow moves the pixel that an iterator over it is at.
inline cv::Point2f MovedPixel(const cv::Mat& flow, const cv::LineIterator& line) {
    const cv::Point pixel = line.pos();
    const auto& motion = flow.at<cv::Point2f>(pixel);
    return {static_cast<float>(pixel.x) + motion.x, static_cast<float>(pixel.y) + motion.y};
}

}  // namespace quarry
