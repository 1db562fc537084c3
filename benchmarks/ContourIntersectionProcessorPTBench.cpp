#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/ContourIntersectionProcessorPT.h"

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

int Plain(const Points& polygon, const Points& test) {
    const auto listed = [](const Points& points) {
        return quarry::plain::Listed(points.data(), static_cast<int>(points.size()));
    };
    return quarry::plain::PositionOf(listed(polygon), listed(test));
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
