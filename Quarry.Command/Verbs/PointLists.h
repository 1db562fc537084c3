/// @file
/// Points from JSON files, with failures that name the file, the point and what is allowed.
#pragma once

#include <Quarry/Quarry.h>

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace quarry::command {

/// What a list of points may hold.
struct PointLimits {
    double low;  ///< of both coordinates
    double high;
    std::size_t count;  ///< exactly so many
};

/// A JSON array of [x, y] pairs.
/// @param named  the array, as failures name it: the file, and the key where it is one of several
/// @throws Failure  it is something else, or beyond the limits
std::vector<FloatPoint> PointsOf(const nlohmann::json& array, const std::string& named, const PointLimits& limits);

}  // namespace quarry::command
