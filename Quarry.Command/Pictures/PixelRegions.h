/// @file
/// Places in pictures: fractions of their width and height, and pixels.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// A closed line through points; whose coordinates they are says its owner.
using Polygon = std::vector<FloatPoint>;

/// The nearest pixel of a picture of this size.
cv::Point PixelOf(const FloatPoint& point, const cv::Size& size);
std::vector<cv::Point> PixelsOf(Span<FloatPoint> polygon, const cv::Size& size);

/// What the library takes of an area: fractions of a pixel do not count.
cv::Rect PixelsOf(const RelRect& area, const cv::Size& size);

/// An area that the library takes these pixels of.
RelRect RelativeOf(const cv::Rect& pixels, const cv::Size& size);

/// Where things were found, in pixels.
/// @param searched  what the places that were found are fractions of
std::vector<cv::Rect> PlacesOf(const Detections& found, const cv::Rect& searched);

}  // namespace quarry::command
