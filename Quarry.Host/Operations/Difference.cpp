#include "Operations/Difference.h"

#include "Operations/Call.h"

namespace quarry::host {

DifferenceMaker::DifferenceMaker() : handle(Create(CreateCVImageAbsSubtractor, BinaryImageOperationOptions{})) {}

cv::Mat DifferenceMaker::Make(const cv::Mat& first, const cv::Mat& second) {
    CV_Assert(first.size() == second.size());
    const BinaryImageOperationData input = {0, ImageOf(first), ImageOf(second)};
    return PictureOf(*Processed<ImageOperationResult>(handle, input)->Image);
}

DifferenceStatistics StatisticsOf(const cv::Mat& difference) {
    const auto pixels = static_cast<double>(difference.total());
    cv::Mat most;
    cv::reduce(difference.reshape(1, static_cast<int>(difference.total())), most, 1, cv::REDUCE_MAX);
    return {cv::norm(difference, cv::NORM_L1) / (pixels * difference.channels()), cv::countNonZero(most) / pixels,
            static_cast<int>(cv::norm(difference, cv::NORM_INF))};
}

}  // namespace quarry::host
