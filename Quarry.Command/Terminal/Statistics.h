/// @file
/// Numbers that sum up results.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace quarry::command {

/// The share of the mask's pixels that are not 0, from 0 to 1.
double ShareOf(const cv::Mat& mask);

/// How much two pictures differ, by their absolute difference.
struct DifferenceStatistics {
    double mean;     ///< grey levels, over all pixels and channels
    double changed;  ///< share of the pixels that differ in at least one channel, from 0 to 1
    int maximum;     ///< grey levels
};

DifferenceStatistics StatisticsOf(const cv::Mat& difference);

/// How fast the pixels of a motion field move, in pixels per frame.
struct Speed {
    double mean;
    double maximum;
};

/// @param motion  two floats per pixel, pixels per frame
Speed SpeedOf(const cv::Mat& motion);

/// The mean of the values without those that are not a number; 0 when no value is a number.
float MeanOfNumbers(const std::vector<float>& values);

/// The value that the share `rank` of the values does not exceed: 0.5 gives the median. 0 when there are no values.
double Quantile(std::vector<double> values, double rank);

/// Whether ContourRate could compare the two shapes. It cannot when only one of them has an area: it then gives a rate
/// near the largest number that a double holds, which no pair of other shapes comes near.
constexpr bool IsOfComparableShapes(double rate) {
    return rate < 1e200;
}

}  // namespace quarry::command
