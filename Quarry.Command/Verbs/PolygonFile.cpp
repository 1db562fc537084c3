#include "PolygonFile.h"

#include <cstddef>

#include "Console.h"
#include "JsonInput.h"

namespace quarry::command {

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

nlohmann::ordered_json JsonOf(Span<FloatPoint> polygon) {
    nlohmann::ordered_json points = nlohmann::ordered_json::array();
    for (const FloatPoint& point : polygon) points.push_back({point.X, point.Y});
    return points;
}

}  // namespace quarry::command
