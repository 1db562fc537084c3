/// @file
/// Converts points and rectangles of pictures between fractions of width and height and pixels.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// The corners of a polygon, in fractions of a picture or in pixels, as the function says that takes it.
using Polygon = std::vector<FloatPoint>;

/// The nearest pixel of a picture of this size.
cv::Point PixelOf(const FloatPoint& point, const cv::Size& size);
std::vector<cv::Point> PixelsOf(Span<FloatPoint> polygon, const cv::Size& size);

/// The pixels that the library reads when it is given this area. It ignores fractions of a pixel.
cv::Rect PixelsOf(const RelRect& area, const cv::Size& size);

/// An area for which the library reads exactly these pixels.
RelRect RelativeOf(const cv::Rect& pixels, const cv::Size& size);

/// The rectangles of detections in pixels of the picture.
/// @param searched  the part of the picture that was searched; the detections are in fractions of it
std::vector<cv::Rect> RectanglesOf(const Detections& found, const cv::Rect& searched);

}  // namespace quarry::command
