#include "Statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

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

Speed SpeedOf(const cv::Mat& motion) {
    std::array<cv::Mat, 2> parts;
    cv::split(motion, parts.data());
    cv::Mat speed;
    cv::Mat direction;
    cv::cartToPolar(parts[0], parts[1], speed, direction, true);
    return {cv::mean(speed)[0], cv::norm(speed, cv::NORM_INF)};
}

float MeanOfNumbers(const std::vector<float>& values) {
    float sum = 0;
    int count = 0;
    for (const float value : values) {
        if (std::isnan(value)) continue;
        sum += value;
        ++count;
    }
    return count > 0 ? sum / static_cast<float>(count) : 0;
}

double Quantile(std::vector<double> values, double rank) {
    if (values.empty()) return 0;
    const auto place = static_cast<std::ptrdiff_t>(rank * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
}

}  // namespace quarry::command
