#pragma once

#include <vector>

#include "plain/Steps.h"

/// How fast a contour changes its shape, in plain steps.
namespace quarry::plain {

inline PixelContour PixelsOf(const std::vector<FloatPoint>& points, const cv::Size& frame) {
    PixelContour pixels;
    pixels.reserve(points.size());
    for (const FloatPoint& point : points) {
        pixels.emplace_back(TruncatedProduct(point.X, frame.width), TruncatedProduct(point.Y, frame.height));
    }
    return pixels;
}

inline double ShapeDistance(const std::vector<FloatPoint>& current, const std::vector<FloatPoint>& previous,
                            const cv::Size& frame, int method) {
    return cv::matchShapes(PixelsOf(current, frame), PixelsOf(previous, frame), method, 0.0);
}

/// @param interval  milliseconds
inline double ShapeRate(const std::vector<FloatPoint>& current, const std::vector<FloatPoint>& previous,
                        const cv::Size& frame, int method, double interval) {
    return ShapeDistance(current, previous, frame, method) / (interval / 1000.0);
}

}  // namespace quarry::plain
