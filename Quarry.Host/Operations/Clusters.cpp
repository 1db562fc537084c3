#include "Operations/Clusters.h"

#include <cstddef>
#include <opencv2/imgproc.hpp>

#include "Operations/Call.h"

namespace quarry::host {
namespace {

/// The library's measure of how closely borders are traced.
constexpr float kEveryPixel = 1;
constexpr float kWhatShapes = 0;

FoundCluster Copied(const Cluster& cluster) {
    FoundCluster found{std::nullopt, OutlineOf(*cluster.Contour)};
    // The centre of a line or a dot is a division by its area.
    if (found.outline.area > 0) found.centre = cv::Point2f(cluster.CenterX, cluster.CenterY);
    return found;
}

}  // namespace

ClusterFinder::ClusterFinder(const ClusterSettings& settings)
    : handle(Create(CreateCVClustererContours,
                    ClustererOptions{0, settings.everyPixel ? kEveryPixel : kWhatShapes, settings.minArea})) {}

std::vector<FoundCluster> ClusterFinder::Find(const cv::Mat& frame) {
    cv::cvtColor(frame, redFirst, cv::COLOR_BGR2RGB);
    const Processed<ClustererResult> result(handle, ClustererData{0, ImageOf(redFirst)});
    std::vector<FoundCluster> clusters;
    clusters.reserve(static_cast<std::size_t>(result->Count));
    for (int i = 0; i < result->Count; ++i) clusters.push_back(Copied(result->Clusters[i]));
    return clusters;
}

}  // namespace quarry::host
