#include "JsonOutput.h"

namespace quarry::command {

nlohmann::ordered_json JsonOf(const cv::Rect& rect) {
    return {{"x", rect.x}, {"y", rect.y}, {"width", rect.width}, {"height", rect.height}};
}

nlohmann::ordered_json JsonOf(Span<FloatPoint> polygon) {
    nlohmann::ordered_json points = nlohmann::ordered_json::array();
    for (const FloatPoint& point : polygon) points.push_back({point.X, point.Y});
    return points;
}

}  // namespace quarry::command
