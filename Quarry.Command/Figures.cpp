#include "Figures.h"

namespace quarry::command {

double ShareOf(const cv::Mat& mask) {
    return cv::countNonZero(mask) / static_cast<double>(mask.total());
}

DifferenceStatistics StatisticsOf(const cv::Mat& difference) {
    const auto pixels = static_cast<double>(difference.total());
    cv::Mat most;
    cv::reduce(difference.reshape(1, static_cast<int>(difference.total())), most, 1, cv::REDUCE_MAX);
    return {cv::norm(difference, cv::NORM_L1) / (pixels * difference.channels()), cv::countNonZero(most) / pixels,
            static_cast<int>(cv::norm(difference, cv::NORM_INF))};
}

}  // namespace quarry::command
