/// @file
/// Contours and grids, drawn into pictures.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "Operations/Clusters.h"
#include "Operations/Outline.h"

namespace quarry::host {

/// Orange, as marks in pictures are.
inline const cv::Scalar kMarkColour(40, 120, 255);

/// Draws a polygon that is in fractions of the picture's width and height, and nothing where it has no points.
void DrawPolygon(cv::Mat& picture, const Polygon& polygon, const cv::Scalar& colour);

/// The frame with the contours of the clusters and crosses at their centres.
cv::Mat MarkClusters(const cv::Mat& frame, const std::vector<FoundCluster>& clusters);

/// The frame under a grid, with the occupied cells tinted.
/// @param cells  one byte per cell, not 0: occupied; no more cells than pixels in either direction
cv::Mat MarkCells(const cv::Mat& frame, const cv::Mat& cells);

}  // namespace quarry::host
