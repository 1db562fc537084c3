/// @file
/// Polygons in JSON: [[x, y], [x, y], ...].
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "PixelRegions.h"

namespace quarry::command {

/// A polygon of one point or more.
/// @throws Failure  there is no such file or it holds none
Polygon ReadPolygon(const std::string& path);

nlohmann::ordered_json JsonOf(Span<FloatPoint> polygon);

}  // namespace quarry::command
