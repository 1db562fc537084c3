#include "JsonInput.h"

#include <fmt/format.h>

#include <cmath>
#include <fstream>
#include <limits>

#include "Console.h"
#include "Media.h"

namespace quarry::command {
namespace {

float CoordinateOf(const nlohmann::json& value, const std::string& named, const PointLimits& limits) {
    const std::string allowed = fmt::format("a number from {:g} to {:g}", limits.low, limits.high);
    if (!value.is_number()) throw Failure(named + " is not " + allowed);
    const double number = value.get<double>();
    if (!(limits.low <= number && number <= limits.high)) {
        throw Failure(named + fmt::format(" is {:g}; it must be ", number) + allowed);
    }
    return static_cast<float>(number);
}

}  // namespace

nlohmann::json ReadJson(const std::string& path) {
    CheckIsFile(path);
    std::ifstream stream(path, std::ios::binary);
    try {
        return nlohmann::json::parse(stream);
    } catch (const nlohmann::json::exception&) {
        throw Failure(path + (stream.bad() ? ": cannot be read" : ": not JSON"));
    }
}

float SinglePrecision(const nlohmann::json& value, const std::string& named) {
    if (!value.is_number()) throw Failure(named + " is not a number");
    const double number = value.get<double>();
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        throw Failure(named + " is too large for single precision");
    }
    return static_cast<float>(number);
}

std::vector<FloatPoint> PointsOf(const nlohmann::json& array, const std::string& named, const PointLimits& limits) {
    if (!array.is_array()) {
        throw Failure(named + ": not a JSON array of " + std::to_string(limits.count) + " [x, y] pairs");
    }
    if (array.size() != limits.count) {
        throw Failure(named + ": holds " + std::to_string(array.size()) + " points; there must be " +
                      std::to_string(limits.count));
    }
    std::vector<FloatPoint> points;
    points.reserve(array.size());
    for (const nlohmann::json& pair : array) {
        const std::string point =
            named + ": point " + std::to_string(points.size() + 1) + " of " + std::to_string(array.size());
        if (!pair.is_array() || pair.size() != 2) throw Failure(point + " is not an [x, y] pair");
        points.push_back({CoordinateOf(pair[0], point + ": x", limits), CoordinateOf(pair[1], point + ": y", limits)});
    }
    return points;
}

Polygon ReadPolygon(const std::string& path) {
    const nlohmann::json points = ReadJson(path);
    if (!points.is_array()) throw Failure(path + ": not a JSON array of points, [[x, y], [x, y], ...]");
    if (points.empty()) throw Failure(path + ": holds no points");
    Polygon polygon;
    polygon.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::string named = path + ": point " + std::to_string(i + 1);
        if (!points[i].is_array() || points[i].size() != 2) throw Failure(named + " is not [x, y]");
        polygon.push_back({SinglePrecision(points[i][0], named + ": x"), SinglePrecision(points[i][1], named + ": y")});
    }
    return polygon;
}

}  // namespace quarry::command
