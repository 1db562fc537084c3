/// @file
/// Reads points and numbers from JSON files. Errors name the file, the place in it and what is allowed.
#pragma once

#include <Quarry/Quarry.h>

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "PixelRegions.h"

namespace quarry::command {

/// @throws Failure  there is no such file or it is not JSON
nlohmann::json ReadJson(const std::string& path);

/// A number in single precision, as the library takes it.
/// @param named  file and place for the message: "face.json: value 3"
/// @throws Failure  it is not a number or too large
float SinglePrecision(const nlohmann::json& value, const std::string& named);

/// What a list of points may hold.
struct PointLimits {
    double low;  ///< of both coordinates
    double high;
    std::size_t count;  ///< the exact number of points
};

/// The points of a JSON array of [x, y] pairs.
/// @param named  the array for the message: the file, and the key when the file has several arrays
/// @throws Failure  it is something else, or beyond the limits
std::vector<FloatPoint> PointsOf(const nlohmann::json& array, const std::string& named, const PointLimits& limits);

/// Reads a polygon of one point or more, [[x, y], [x, y], ...].
/// @throws Failure  there is no such file or it does not hold a polygon
Polygon ReadPolygon(const std::string& path);

}  // namespace quarry::command
