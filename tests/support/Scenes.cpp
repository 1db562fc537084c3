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

Image ImageOf(const cv::Mat& frame, uint64_t timestamp) {
    CV_Assert(frame.isContinuous());
    return {frame.data, frame.cols, frame.rows, static_cast<int32_t>(frame.step[0]), timestamp};
}

}  // namespace quarry::test
