#include "Quarry.OpenCV/CVHelper.h"

#include <cmath>
#include <cstddef>

#include "Quarry.OpenCV/LineDistance.h"
#include "Quarry.OpenCV/Truncate.h"

namespace {

struct RatePoint {
    float frames;
    float rate;
};

constexpr RatePoint kRateTable[] = {
    {1.0F, 0.9F},       {2.0F, 0.7F},       {4.0F, 0.45F},       {9.0F, 0.25F},
    {22.0F, 0.1F},      {30.0F, 0.074F},    {45.0F, 0.05F},      {85.0F, 0.027F},
    {135.0F, 0.017F},   {255.0F, 0.009F},   {460.0F, 0.005F},    {2302.0F, 0.001F},
    {4605.0F, 0.0005F}, {7675.0F, 0.0003F}, {11512.0F, 0.0002F}, {23025.0F, 0.0001F},
};

}  // namespace

void CVHelper::CopyHeaderMatToImage(cv::Mat* mat, Image* image) {
    image->data = mat->data;
    image->width = mat->cols;
    image->height = mat->rows;
    image->stride = static_cast<int32_t>(mat->step[0]);
}

cv::Rect CVHelper::RelativeToAbsolute(RelRect rect, int width, int height) {
    const auto frameWidth = static_cast<float>(width);
    const auto frameHeight = static_cast<float>(height);
    return {quarry::Truncate(rect.X * frameWidth), quarry::Truncate(rect.Y * frameHeight),
            quarry::Truncate(frameWidth * rect.Width), quarry::Truncate(frameHeight * rect.Height)};
}

cv::Point2f CVHelper::AbsoluteToRelative(cv::Point point, int width, int height) {
    return {static_cast<float>(point.x) / static_cast<float>(width),
            static_cast<float>(point.y) / static_cast<float>(height)};
}

float CVHelper::LinearApprox(float a, float b, float t) {
    return ((b - a) + (b - a)) * (t - 0.5F) + b;
}

float CVHelper::RateTableLinearApprox(int value) {
    const auto x = static_cast<float>(value);
    // The last segment extrapolates every value outside the table, also those below it: hosts rely on it.
    std::size_t segment = std::size(kRateTable) - 2;
    for (std::size_t k = 0; k < std::size(kRateTable) - 2; ++k) {
        if (kRateTable[k].frames <= x && x < kRateTable[k + 1].frames) {
            segment = k;
            break;
        }
    }
    const RatePoint& from = kRateTable[segment];
    const RatePoint& to = kRateTable[segment + 1];
    const float slope = (to.rate - from.rate) / (to.frames - from.frames);
    return x * slope + (from.rate - from.frames * slope);
}

cv::Mat CVHelper::GetRotationMatrix(const cv::Mat& image, const cv::Point& center, double angle) {
    // The angle in radians is rounded to a float: hosts compare with results that were computed this way.
    const auto radians = static_cast<double>(static_cast<float>(angle * CV_PI / 180.0));
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    const int halfWidth = image.cols / 2;
    const int halfHeight = image.rows / 2;
    cv::Mat matrix(2, 3, CV_64F);
    matrix.at<double>(0, 0) = cosine;
    matrix.at<double>(0, 1) = -sine;
    matrix.at<double>(0, 2) = center.x - (cosine * halfWidth - sine * halfHeight);
    matrix.at<double>(1, 0) = sine;
    matrix.at<double>(1, 1) = cosine;
    matrix.at<double>(1, 2) = center.y - (sine * halfWidth + cosine * halfHeight);
    return matrix;
}

std::vector<float> CVHelper::GetVectorProjectionOntoNormal(const cv::Mat& flow, const cv::Point2f& p1,
                                                           const cv::Point2f& p2, cv::LineIterator line) {
    std::vector<float> distances;
    if (line.count < 1) return distances;
    distances.reserve(static_cast<std::size_t>(line.count));
    const quarry::LineDistance distance(p1, p2);
    for (int i = 0; i < line.count; ++i, ++line) distances.push_back(distance(quarry::MovedPixel(flow, line)));
    return distances;
}
