#pragma once

#include <opencv2/core.hpp>
#include <string>

#include "Body.h"

namespace quarry::command {

/// The picture with the points of a body and the outlines of the areas that its colours are taken from.
cv::Mat MarkBody(const cv::Mat& picture, const Body& body);

/// The picture with a strip below that holds the four colours in their order.
cv::Mat WithSwatches(const cv::Mat& picture, const ClothingColorsResult& colours);

/// `#rrggbb`.
std::string HexOf(const RgbColor& colour);

}  // namespace quarry::command
