#include "PointLists.h"

#include "Console.h"
#include "Options.h"

namespace quarry::command {
namespace {

float CoordinateOf(const nlohmann::json& value, const std::string& named, const PointLimits& limits) {
    const std::string allowed = Format("a number from %g to %g", limits.low, limits.high);
    if (!value.is_number()) throw Failure(named + " is not " + allowed);
    const double number = value.get<double>();
    if (!(limits.low <= number && number <= limits.high)) {
        throw Failure(named + Format(" is %g; it must be ", number) + allowed);
    }
    return static_cast<float>(number);
}

}  // namespace

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

}  // namespace quarry::command
