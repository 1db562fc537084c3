#pragma once

#include <opencv2/core.hpp>
#include <string>

#include "Body.h"

namespace quarry::command {

/// The picture with the points of a body and the areas that its colours are taken from.
cv::Mat MarkBody(const cv::Mat& picture, const Body& body);

/// The picture over a strip with the four colours in their order.
cv::Mat WithSwatches(const cv::Mat& picture, const ClothingColorsResult& colours);

/// `#rrggbb`.
std::string HexOf(const RgbColor& colour);

}  // namespace quarry::command
