#pragma once

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

/// The motion across a line, in plain steps.
namespace quarry::plain {

/// Single precision throughout.
inline float Length(const cv::Point2f& vector) {
    return std::sqrt(vector.x * vector.x + vector.y * vector.y);
}

/// By Heron's formula, negative to the left of the line.
inline float DistanceFromLine(const cv::Point2f& point, const cv::Point2f& start, const cv::Point2f& end) {
    const float a = Length(point - start);
    const float b = Length(point - end);
    const float c = Length(end - start);
    const float s = (a + b + c) / 2.0F;
    const double area = std::sqrt(static_cast<double>((s - a) * s * (s - b) * (s - c)));
    const auto distance = static_cast<float>(2.0 * area / static_cast<double>(c));
    const float cross = (end.x - start.x) * (point.y - start.y) - (end.y - start.y) * (point.x - start.x);
    return cross < 0.0F ? -distance : distance;
}

/// A distance for each pixel of the line, clipped to the field.
inline std::vector<float> Profile(const cv::Mat& flow, const cv::Point& start, const cv::Point& end) {
    cv::LineIterator line(flow, start, end, 8, false);
    std::vector<float> distances;
    for (int i = 0; i < line.count; ++i, ++line) {
        const cv::Point pixel = line.pos();
        distances.push_back(DistanceFromLine(cv::Point2f(pixel) + flow.at<cv::Point2f>(pixel), start, end));
    }
    return distances;
}

/// The profile at another number of places; zeros where there is none.
inline std::vector<float> Resampled(const std::vector<float>& profile, int count) {
    const int length = static_cast<int>(profile.size());
    std::vector<float> values(static_cast<std::size_t>(count), 0.0F);
    if (length == 0) return values;
    const auto rounded = [](float value) { return static_cast<int>(std::floor(static_cast<double>(value) + 0.5)); };
    for (int i = 0; i < count; ++i) {
        const int place = count > length
                              ? i / rounded(static_cast<float>(count) / static_cast<float>(length))
                              : rounded(static_cast<float>(i) * static_cast<float>(length) / static_cast<float>(count));
        values[static_cast<std::size_t>(i)] = profile[static_cast<std::size_t>(std::min(place, length - 1))];
    }
    return values;
}

}  // namespace quarry::plain
