#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/ContourRateMeasuringProcessor.h"

namespace {

using namespace quarry::bench;

using Points = std::vector<FloatPoint>;

/// A slanted ellipse as a traced outline, in relative coordinates of the frame.
Points Outline(const cv::Size& frame, int slant) {
    cv::Mat mask = cv::Mat::zeros(frame, CV_8UC1);
    const cv::Point center(frame.width / 2, frame.height / 2);
    cv::ellipse(mask, center, {frame.height / 8, frame.height / 4}, slant, 0, 360, cv::Scalar(255), cv::FILLED);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(mask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    Points points;
    for (const cv::Point& point : contours.at(0)) {
        points.push_back({static_cast<float>(point.x) / static_cast<float>(frame.width),
                          static_cast<float>(point.y) / static_cast<float>(frame.height)});
    }
    return points;
}

void CompareOn(const cv::Size& frame, const std::string& input) {
    constexpr double kInterval = 40;
    const auto current = std::make_shared<Points>(Outline(frame, 10));
    const auto previous = std::make_shared<Points>(Outline(frame, 25));
    const Contour currentRecord{current->data(), static_cast<int32_t>(current->size()), 0, 0};
    const Contour previousRecord{previous->data(), static_cast<int32_t>(previous->size()), 0, 0};
    const Way plain{
        [=] {
            benchmark::DoNotOptimize(
                quarry::plain::ShapeRate(*current, *previous, frame, cv::CONTOURS_MATCH_I1, kInterval));
        },
        [=] {
            return BytesOf(quarry::plain::ShapeRate(*current, *previous, frame, cv::CONTOURS_MATCH_I1, kInterval));
        }};
    const auto width = static_cast<int16_t>(frame.width);
    const auto height = static_cast<int16_t>(frame.height);
    Compare("ContourRateMeasuringProcessor", {"", input, 0.98}, plain,
            Called<ContourRateMeasuringOptions, ContourRateMeasuringInputData, ContourRateMeasuringOutputData>(
                CreateCVContourRateCalculator, {0, {}, cv::CONTOURS_MATCH_I1},
                {0, currentRecord, previousRecord, width, height, 0, kInterval},
                [](const ContourRateMeasuringOutputData& result) { return BytesOf(result.Rate); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn({640, 480}, "640x480");
    CompareOn({1920, 1080}, "1920x1080");
    return Run(argc, argv);
}
