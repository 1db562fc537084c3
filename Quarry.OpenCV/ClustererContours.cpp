#include "Quarry.OpenCV/ClustererContours.h"

#include <algorithm>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/OuterContours.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry.OpenCV/RelativePoints.h"
#include "Quarry.OpenCV/Truncate.h"

namespace {

/// Centre of mass in whole pixels. Without area it is not a number, which Truncate turns into the lowest integer.
cv::Point CenterOf(const std::vector<cv::Point>& contour) {
    const cv::Moments moments = cv::moments(contour, false);
    return {quarry::Truncate(moments.m10 / moments.m00), quarry::Truncate(moments.m01 / moments.m00)};
}

void Fill(Cluster& cluster, const quarry::OuterContour& contour, const cv::Size& frame) {
    const std::vector<cv::Point>& points = contour.points;
    const cv::Point2f center = CVHelper::AbsoluteToRelative(CenterOf(points), frame.width, frame.height);
    cluster.CenterX = center.x;
    cluster.CenterY = center.y;
    cluster.Contour = CreateContour(static_cast<int>(points.size()));
    const int64_t pixels = int64_t{frame.height} * frame.width;
    cluster.Contour->Area = static_cast<float>(contour.area / static_cast<double>(pixels));
    cluster.Contour->Perimeter = static_cast<float>(cv::arcLength(points, true) / static_cast<double>(frame.width));
    quarry::WriteRelativePoints(points, {}, frame, cluster.Contour->Points);
}

}  // namespace

ClustererResult ClustererContours::DoProcess(ClustererData data) {
    const std::vector<quarry::OuterContour> contours =
        quarry::FindOuterContours(data.Image, options.OutlinePrecision, options.MinContourAreaRate);
    quarry::PendingResult result(CreateClustererResult(static_cast<int>(contours.size())), DestroyClustererResult);
    Cluster* out = result->Clusters;
    std::fill_n(out, contours.size(), Cluster{});  // so that a half-built result can be released
    const cv::Size frame(data.Image.width, data.Image.height);
    for (const quarry::OuterContour& contour : contours) Fill(*out++, contour, frame);
    return result.HandOver();
}
