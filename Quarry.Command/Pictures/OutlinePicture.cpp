#include "OutlinePicture.h"

#include <opencv2/imgproc.hpp>

#include "PixelRegions.h"

namespace quarry::command {
namespace {

constexpr int kLine = 2;       // pixels
constexpr int kCross = 15;     // pixels
constexpr double kTint = 0.4;  // of the colour over an occupied cell
const cv::Scalar kGrid(150, 150, 150);
const cv::Scalar kCentre(255, 255, 255);

void Tint(cv::Mat part, const cv::Scalar& colour) {
    cv::addWeighted(part, 1 - kTint, cv::Mat(part.size(), part.type(), colour), kTint, 0, part);
}

}  // namespace

void DrawPolygon(cv::Mat& picture, Span<FloatPoint> polygon, const cv::Scalar& colour) {
    if (polygon.empty()) return;
    cv::polylines(picture, PixelsOf(polygon, picture.size()), true, colour, kLine, cv::LINE_AA);
}

bool HasCentre(const Cluster& cluster) {
    return cluster.Contour->Area > 0;
}

cv::Mat MarkClusters(const cv::Mat& frame, const ContourClusters::Clusters& clusters) {
    cv::Mat picture = frame.clone();
    for (const Cluster& cluster : clusters) {
        DrawPolygon(picture, quarry::PointsOf(*cluster.Contour), kMarkColour);
        if (!HasCentre(cluster)) continue;
        const cv::Point centre = PixelOf({cluster.CenterX, cluster.CenterY}, picture.size());
        cv::drawMarker(picture, centre, kCentre, cv::MARKER_CROSS, kCross, kLine);
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

}  // namespace quarry::command
