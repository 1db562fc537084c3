/// @file
/// Pieces of the demo page; everything in them is inline.
#pragma once

#include <opencv2/core.hpp>
#include <string>

namespace quarry::command::html {

/// Text as it may stand in HTML, attribute values included.
std::string Escape(const std::string& text);

/// A number with so many digits after the point.
std::string Number(double value, int digits);

/// An `img` with its pixels in it, scaled down to `width` where it is wider. Photographs.
/// @param alt  what is seen, plain text
std::string Jpeg(const cv::Mat& picture, int width, const std::string& alt);

/// The same without loss. Masks.
std::string Png(const cv::Mat& picture, int width, const std::string& alt);

/// The picture itself as an address, without loss.
std::string PngAddress(const cv::Mat& picture);

/// ` name="value"`, for a tag.
std::string Attribute(const std::string& name, const std::string& value);

/// A picture with a caption; both are HTML.
std::string Figure(const std::string& picture, const std::string& caption);

/// A time with a fitting unit.
std::string Time(double milliseconds);

/// A number that catches the eye, over what it means; both are HTML.
std::string Fact(const std::string& value, const std::string& meaning);

}  // namespace quarry::command::html
