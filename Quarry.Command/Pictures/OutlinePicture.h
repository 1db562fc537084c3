/// @file
/// Contours and grids, drawn into pictures.
#pragma once

#include <Quarry/Host.hpp>
#include <opencv2/core.hpp>

namespace quarry::command {

/// Orange, as marks in pictures are.
inline const cv::Scalar kMarkColour(40, 120, 255);

/// Draws a polygon that is in fractions of the picture's width and height, and nothing where it has no points.
void DrawPolygon(cv::Mat& picture, Span<FloatPoint> polygon, const cv::Scalar& colour);

/// Whether it has a centre of mass: that of a line or a dot is a division by its area.
bool HasCentre(const Cluster& cluster);

/// The frame with the contours of the clusters and crosses at their centres.
cv::Mat MarkClusters(const cv::Mat& frame, const ContourClusters::Clusters& clusters);

/// The frame under a grid, with the occupied cells tinted.
/// @param cells  one byte per cell, not 0: occupied; no more cells than pixels in either direction
cv::Mat MarkCells(const cv::Mat& frame, const cv::Mat& cells);

}  // namespace quarry::command
