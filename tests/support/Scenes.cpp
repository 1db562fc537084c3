#include "support/Scenes.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace quarry::test {

cv::Mat RandomFrame(int width, int height, uint64_t seed) {
    cv::Mat frame(height, width, CV_8UC3);
    cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
    random.fill(frame, cv::RNG::UNIFORM, 0, 256);
    return frame;
}

cv::Mat MovingSquare(int width, int height, int step) {
    cv::Mat frame = RandomFrame(width, height, 1);
    cv::blur(frame, frame, {5, 5});
    const int side = std::max(1, std::min(width, height) / 4);
    const int x = (step * 3) % std::max(1, width - side);
    cv::rectangle(frame, cv::Rect(x, (height - side) / 2, side, side), cv::Scalar(240, 250, 230), cv::FILLED);
    return frame;
}

cv::Mat Ground(int width, int height) {
    cv::Mat ground = RandomFrame(width, height, 7);
    cv::blur(ground, ground, {9, 9});
    return ground;
}

cv::Mat Pattern(int width, int height, uint64_t seed) {
    cv::Mat pattern = RandomFrame(width, height, seed);
    cv::blur(pattern, pattern, {5, 5});
    cv::normalize(pattern, pattern, 0, 255, cv::NORM_MINMAX);
    return pattern;
}

void Draw(cv::Mat& frame, const cv::Mat& picture, const cv::Point& place) {
    const cv::Rect visible = cv::Rect(place, picture.size()) & cv::Rect({}, frame.size());
    if (!visible.empty()) picture(visible - place).copyTo(frame(visible));
}

Image ImageOf(const cv::Mat& frame, uint64_t timestamp) {
    CV_Assert(frame.isContinuous());
    return {frame.data, frame.cols, frame.rows, static_cast<int32_t>(frame.step[0]), timestamp};
}

}  // namespace quarry::test
