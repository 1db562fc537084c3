/// @file
/// Draws contours and grids into pictures.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>

namespace quarry::command {

/// Orange, in the order B, G, R.
inline const cv::Scalar kMarkColour(40, 120, 255);

/// Draws a polygon, whose points are in fractions of the picture's width and height. It may have no points.
void DrawPolygon(cv::Mat& picture, Span<FloatPoint> polygon, const cv::Scalar& colour);

/// Whether the cluster has a centre of mass. A line or a dot has none, because its area, the divisor, is 0.
bool HasCentre(const Cluster& cluster);

/// The frame with the contours of the clusters and crosses at their centres.
cv::Mat MarkClusters(const cv::Mat& frame, const ContourClusters::Clusters& clusters);

/// The frame under a grid, with the occupied cells tinted.
/// @param cells  one byte per cell, which is not 0 when the cell is occupied; no more columns and rows than the frame
/// has
cv::Mat MarkCells(const cv::Mat& frame, const cv::Mat& cells);

}  // namespace quarry::command
