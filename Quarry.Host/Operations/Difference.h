#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// The absolute difference of two pictures.
class DifferenceMaker {
public:
    DifferenceMaker();

    /// @param first   packed 8-bit, three channels, as is the result
    /// @param second  of the same size
    cv::Mat Make(const cv::Mat& first, const cv::Mat& second);

private:
    Handle handle;
};

/// How much a difference shows.
struct DifferenceStatistics {
    double mean;     ///< grey levels, over all pixels and channels
    double changed;  ///< 0..1 of the pixels: those with a channel that differs
    int maximum;     ///< grey levels
};

DifferenceStatistics StatisticsOf(const cv::Mat& difference);

}  // namespace quarry::host
