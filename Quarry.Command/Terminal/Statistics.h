/// @file
/// What verbs tell of results.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// 0..1 of the mask's pixels: those that are not 0.
double ShareOf(const cv::Mat& mask);

/// How much a difference shows.
struct DifferenceStatistics {
    double mean;     ///< grey levels, over all pixels and channels
    double changed;  ///< 0..1 of the pixels: those with a channel that differs
    int maximum;     ///< grey levels
};

DifferenceStatistics StatisticsOf(const cv::Mat& difference);

/// The value that the share `rank` of the values does not exceed: 0.5 is the median. 0 when there are none.
double Quantile(std::vector<double> values, double rank);

/// Whether a rate of a ContourRate is one. Shapes of which only one has an area cannot be compared: they are as far
/// apart as numbers go, and nothing else comes near.
constexpr bool IsOfComparableShapes(double rate) {
    return rate < 1e200;
}

}  // namespace quarry::command
