#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

using Points = std::vector<cv::Point>;

struct Outline {
    std::vector<FloatPoint> points;
    float area, perimeter;
};

std::string BytesOf(const FloatPoint* points, std::size_t count, float area, float perimeter) {
    std::string bytes = quarry::bench::BytesOf(area) + quarry::bench::BytesOf(perimeter);
    for (std::size_t i = 0; i < count; ++i) bytes += quarry::bench::BytesOf(points[i]);
    return bytes;
}

std::string BytesOf(const Outline& outline) {
    return BytesOf(outline.points.data(), outline.points.size(), outline.area, outline.perimeter);
}

/// The one of the largest area, from a list of its own.
Points Select(std::vector<Points> contours) {  // NOLINT(performance-unnecessary-value-param): the plain form copies
    double bestArea = 0;
    const Points* best = nullptr;
    for (const Points& contour : contours) {
        const double area = cv::contourArea(contour, false);
        if (area > bestArea) {
            bestArea = area;
            best = &contour;
        }
    }
    return best == nullptr ? Points() : *best;
}

Points ObjectContour(const cv::Mat& mask, const cv::Rect& rect) {
    cv::Mat copy;
    mask.copyTo(copy);
    const cv::Mat region(copy, rect);
    std::vector<Points> contours;
    std::vector<cv::Vec4i> hierarchy;
    cv::findContours(region, contours, hierarchy, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
    const std::vector<Points> list = contours;
    return Select(list);
}

Outline Plain(const cv::Mat& mask, const cv::Rect& rect) {
    const Points points = ObjectContour(mask, rect);
    const auto width = static_cast<float>(mask.cols);
    const auto height = static_cast<float>(mask.rows);
    Outline outline{};
    outline.area = static_cast<float>(cv::contourArea(points, false)) / (height * width);
    outline.perimeter = static_cast<float>(cv::arcLength(points, true)) / width;
    outline.points.reserve(points.size());
    for (const cv::Point& point : points) {
        outline.points.push_back(
            {static_cast<float>(point.x + rect.x) / width, static_cast<float>(point.y + rect.y) / height});
    }
    return outline;
}

void CompareOn(const cv::Size& size, const std::string& input, double floor) {
    const cv::Mat mask = quarry::test::ObjectMask(size.width, size.height);
    const cv::Rect rect(size.width / 4, size.height / 4, size.width / 2, size.height / 2);
    const Way plain{[=] { benchmark::DoNotOptimize(Plain(mask, rect)); }, [=] { return BytesOf(Plain(mask, rect)); }};
    Compare("ContourCalcingProcessor", {"", input, floor}, plain,
            Called<ContourCalcingOptions, ContourCalcingInputData, ContourResult>(
                CreateCVContourCalculator, {0, {}, cv::CHAIN_APPROX_SIMPLE, 0},
                {0, {mask.data, mask.cols, mask.rows}, {0.25F, 0.25F, 0.5F, 0.5F}}, [](const ContourResult& result) {
                    const Contour& contour = *result.Contour;
                    return BytesOf(contour.Points, static_cast<std::size_t>(contour.Count), contour.Area,
                                   contour.Perimeter);
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn({640, 480}, "640x480", 1.8);
    CompareOn({1920, 1080}, "1920x1080", 4);
    return Run(argc, argv);
}
