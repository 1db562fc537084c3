#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"

namespace {

using namespace quarry::bench;

using Points = std::vector<FloatPoint>;

/// A lobed outline in whole pixels of a 640 x 480 frame, as relative coordinates.
Points Outline(int count, double scale) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * CV_PI * i / count;
        const double radius = scale * (180 + 30 * std::sin(5 * angle));
        points.push_back({static_cast<float>(std::round(320 + radius * std::cos(angle))) / 640.0F,
                          static_cast<float>(std::round(240 + radius * std::sin(angle))) / 480.0F});
    }
    return points;
}

std::vector<cv::Point2f> Listed(const Points& points) {
    std::vector<cv::Point2f> list;
    list.reserve(points.size());
    for (const FloatPoint& point : points) list.emplace_back(point.X, point.Y);
    return list;
}

int Plain(const Points& polygonPoints, const Points& testPoints) {
    const std::vector<cv::Point2f> polygon = Listed(polygonPoints);
    const std::vector<cv::Point2f> test = Listed(testPoints);
    const auto side = [&](const cv::Point2f& point) {
        return static_cast<int>(cv::pointPolygonTest(polygon, point, false));
    };
    const int first = side(test.front());
    for (std::size_t i = 1; i < test.size(); ++i) {
        if (first * side(test[i]) < 0) return 0;
    }
    return first == 0 ? 1 : first;
}

void CompareOn(const std::string& name, int count, double scale, double floor) {
    const auto polygon = std::make_shared<Points>(Outline(count, 1.0));
    const auto test = std::make_shared<Points>(Outline(count, scale));
    const Contour polygonRecord{polygon->data(), count, 0, 0};
    const Contour testRecord{test->data(), count, 0, 0};
    const Way plain{[=] { benchmark::DoNotOptimize(Plain(*polygon, *test)); },
                    [=] { return BytesOf(Plain(*polygon, *test)); }};
    Compare("ContourIntersectionProcessorPT", {name, std::to_string(count) + " points", floor}, plain,
            Called<ContourIntersectionProcessorOptions, ContourIntersectionProcessorData,
                   ContourInstersectionProcessorResult>(
                CreateCVContourIntersectionProcessor, {}, {0, polygonRecord, testRecord},
                [](const ContourInstersectionProcessorResult& result) { return BytesOf(result.Position); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn("inside", 200, 0.5, 8);
    CompareOn("inside", 1000, 0.5, 30);
    return Run(argc, argv);
}
