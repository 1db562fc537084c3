#pragma once

#include <Quarry/Host.hpp>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>

#include "JsonLine.h"

namespace quarry::command {

/// An object with the members x, y, width and height.
nlohmann::ordered_json JsonOf(const cv::Rect& rect);

/// An array of [x, y] pairs.
nlohmann::ordered_json JsonOf(Span<FloatPoint> polygon);

}  // namespace quarry::command
