#include "OutlinePicture.h"

#include <opencv2/imgproc.hpp>

namespace quarry::host {
namespace {

constexpr int kLine = 2;       // pixels
constexpr int kCross = 15;     // pixels
constexpr double kTint = 0.4;  // of the colour over an occupied cell
const cv::Scalar kGrid(150, 150, 150);
const cv::Scalar kCentre(255, 255, 255);

cv::Point PixelOf(const cv::Point2f& share, const cv::Size& picture) {
    return {cvRound(share.x * static_cast<float>(picture.width)),
            cvRound(share.y * static_cast<float>(picture.height))};
}

void Tint(cv::Mat part, const cv::Scalar& colour) {
    cv::addWeighted(part, 1 - kTint, cv::Mat(part.size(), part.type(), colour), kTint, 0, part);
}

}  // namespace

void DrawPolygon(cv::Mat& picture, const Polygon& polygon, const cv::Scalar& colour) {
    if (polygon.empty()) return;
    std::vector<cv::Point> pixels;
    pixels.reserve(polygon.size());
    for (const cv::Point2f& point : polygon) pixels.push_back(PixelOf(point, picture.size()));
    cv::polylines(picture, pixels, true, colour, kLine, cv::LINE_AA);
}

cv::Mat MarkClusters(const cv::Mat& frame, const std::vector<FoundCluster>& clusters) {
    cv::Mat picture = frame.clone();
    for (const FoundCluster& cluster : clusters) {
        DrawPolygon(picture, cluster.outline.points, kMarkColour);
        if (!cluster.centre) continue;
        cv::drawMarker(picture, PixelOf(*cluster.centre, picture.size()), kCentre, cv::MARKER_CROSS, kCross, kLine);
    }
    return picture;
}

cv::Mat MarkCells(const cv::Mat& frame, const cv::Mat& cells) {
    cv::Mat picture = frame.clone();
    const cv::Size cell(frame.cols / cells.cols, frame.rows / cells.rows);
    for (int row = 0; row < cells.rows; ++row) {
        for (int column = 0; column < cells.cols; ++column) {
            const cv::Rect place({column * cell.width, row * cell.height}, cell);
            if (cells.at<uchar>(row, column) != 0) Tint(picture(place), kMarkColour);
            cv::rectangle(picture, place, kGrid, 1);
        }
    }
    return picture;
}

}  // namespace quarry::host
