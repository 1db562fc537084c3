#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

using Points = std::vector<cv::Point>;

constexpr float kPrecision = 0.5F;
constexpr float kMinAreaRate = 0.001F;

struct Blob {
    std::vector<FloatPoint> points;
    float area, perimeter, centerX, centerY;
};

std::string BytesOf(const FloatPoint* points, std::size_t count, const std::vector<float>& measures) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) bytes += quarry::bench::BytesOf(points[i]);
    for (const float measure : measures) bytes += quarry::bench::BytesOf(measure);
    return bytes;
}

std::string BytesOf(const std::vector<Blob>& blobs) {
    std::string bytes;
    for (const Blob& blob : blobs) {
        bytes +=
            BytesOf(blob.points.data(), blob.points.size(), {blob.area, blob.perimeter, blob.centerX, blob.centerY});
    }
    return bytes;
}

std::string BytesOf(const ClustererResult& result) {
    std::string bytes;
    for (int i = 0; i < result.Count; ++i) {
        const Cluster& cluster = result.Clusters[i];
        const Contour& contour = *cluster.Contour;
        bytes += BytesOf(contour.Points, static_cast<std::size_t>(contour.Count),
                         {contour.Area, contour.Perimeter, cluster.CenterX, cluster.CenterY});
    }
    return bytes;
}

std::vector<Points> ValidContours(const std::vector<Points>& contours, float imageArea) {
    const int threshold = static_cast<int>(imageArea * kMinAreaRate);
    std::vector<Points> valid;
    for (const Points& contour : contours) {
        if (cv::contourArea(contour, false) >= threshold) valid.push_back(contour);
    }
    return valid;
}

Blob BlobOf(const Points& contour, const cv::Size& frame) {
    const auto width = static_cast<float>(frame.width);
    const auto height = static_cast<float>(frame.height);
    const cv::Moments moments = cv::moments(contour, false);
    Blob blob{};
    blob.centerX = static_cast<float>(static_cast<int>(moments.m10 / moments.m00)) / width;
    blob.centerY = static_cast<float>(static_cast<int>(moments.m01 / moments.m00)) / height;
    blob.area = static_cast<float>(cv::contourArea(contour, false) / static_cast<double>(frame.area()));
    blob.perimeter = static_cast<float>(cv::arcLength(contour, true) / static_cast<double>(frame.width));
    blob.points.reserve(contour.size());
    for (const cv::Point& point : contour) {
        blob.points.push_back({static_cast<float>(point.x) / width, static_cast<float>(point.y) / height});
    }
    return blob;
}

std::vector<Blob> Plain(const cv::Mat& frame) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_RGB2GRAY);
    std::vector<Points> contours;
    cv::findContours(grey, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_TC89_KCOS);
    std::vector<Blob> blobs;
    for (const Points& contour : ValidContours(contours, static_cast<float>(grey.rows * grey.cols))) {
        blobs.push_back(BlobOf(contour, grey.size()));
    }
    return blobs;
}

void CompareOn(const cv::Mat& frame, const std::string& input, double floor) {
    const Way plain{[=] { benchmark::DoNotOptimize(Plain(frame)); }, [=] { return BytesOf(Plain(frame)); }};
    Compare("ClustererContours", {"", input, floor}, plain,
            Called<ClustererOptions, ClustererData, ClustererResult>(
                CreateCVClustererContours, {0, kPrecision, kMinAreaRate}, {0, quarry::test::ImageOf(frame)},
                [](const ClustererResult& result) { return BytesOf(result); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(quarry::test::PaintedObjects(640, 480), "640x480", 1.4);
    CompareOn(quarry::test::PaintedObjects(1920, 1080), "1920x1080", 1.6);
    const cv::Mat pedestrians = quarry::test::ChangedPedestrians();
    if (!pedestrians.empty()) CompareOn(pedestrians, "768x576 pedestrians", 1);
    return Run(argc, argv);
}
