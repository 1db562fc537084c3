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

cv::Mat ObjectMask(int width, int height) {
    cv::Mat mask = cv::Mat::zeros(height, width, CV_8UC1);
    const cv::Scalar object(255);
    const int unit = std::max(1, height / 64);
    const auto at = [&](double x, double y) { return cv::Point(cvRound(width * x), cvRound(height * y)); };
    const cv::Point middle = at(0.5, 0.5);
    cv::circle(mask, middle - cv::Point(0, 6 * unit), 2 * unit, object, cv::FILLED);
    cv::ellipse(mask, middle + cv::Point(0, 2 * unit), {4 * unit, 7 * unit}, 5, 0, 360, object, cv::FILLED);
    cv::circle(mask, middle + cv::Point(0, 5 * unit), unit, cv::Scalar(0), cv::FILLED);
    cv::circle(mask, at(0.18, 0.35), 2 * unit, object, cv::FILLED);
    cv::ellipse(mask, at(0.8, 0.3), {unit, 3 * unit}, 20, 0, 360, object, cv::FILLED);
    cv::ellipse(mask, at(0.82, 0.7), {3 * unit, 2 * unit}, 30, 0, 360, object, cv::FILLED);
    cv::circle(mask, at(0.22, 0.75), std::max(1, unit / 4), object, cv::FILLED);
    return mask;
}

cv::Mat PaintedObjects(int width, int height) {
    cv::Mat frame = RandomFrame(width, height, 1);
    frame.setTo(cv::Scalar::all(0), ObjectMask(width, height) == 0);
    return frame;
}

cv::Mat FireScene(int width, int height) {
    cv::Mat frame = RandomFrame(width, height, 2) * 0.4;
    constexpr int kTongues = 5;
    const cv::Scalar colors[] = {{20, 60, 190}, {30, 140, 250}, {90, 220, 255}, {210, 245, 255}};  // from outside in
    double size = 1.0;
    for (const cv::Scalar& color : colors) {
        for (int tongue = 0; tongue < kTongues; ++tongue) {
            const cv::Point foot(width * (tongue + 4) / (kTongues + 7), height * 3 / 4 - height * tongue % 3 / 9);
            const cv::Size axes(cvRound(width * 0.05 * size), cvRound(height * (0.2 + 0.03 * (tongue % 3)) * size));
            cv::ellipse(frame, foot, axes, 10.0 * (tongue - 2), 0, 360, color, cv::FILLED);
        }
        size *= 0.75;
    }
    cv::blur(frame, frame, {5, 5});
    return frame + RandomFrame(width, height, 3) * 0.04;  // a camera's noise
}

cv::Mat BlackFrame(int width, int height) {
    return cv::Mat::zeros(height, width, CV_8UC3);
}

cv::Mat FrameWith(const cv::Size& size, const cv::Rect& object, const cv::Scalar& color) {
    cv::Mat frame = BlackFrame(size.width, size.height);
    frame(object).setTo(color);
    return frame;
}

cv::Mat RandomScene(const cv::Size& size, uint64_t seed) {
    cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
    cv::Mat frame = BlackFrame(size.width, size.height);
    const auto place = [&] { return cv::Point(random.uniform(0, size.width), random.uniform(0, size.height)); };
    const int shapes = random.uniform(0, 9);
    for (int i = 0; i < shapes; ++i) {
        const int reach = random.uniform(0, 3) == 0 ? 4 : 256;
        const cv::Scalar color(random.uniform(0, reach), random.uniform(0, reach), random.uniform(0, reach));
        const int radius = random.uniform(0, size.height / 3 + 1);
        switch (random.uniform(0, 4)) {
            case 0:
                cv::circle(frame, place(), radius, color, cv::FILLED);
                break;
            case 1:
                cv::circle(frame, place(), radius, color, random.uniform(1, 4));
                break;
            case 2:
                cv::rectangle(frame, place(), place(), color, random.uniform(0, 2) == 0 ? 1 : -1);
                break;
            default:
                cv::line(frame, place(), place(), color);
                break;
        }
    }
    return frame;
}

Image ImageOf(const cv::Mat& frame, uint64_t timestamp) {
    CV_Assert(frame.isContinuous());
    return {frame.data, frame.cols, frame.rows, static_cast<int32_t>(frame.step[0]), timestamp};
}

}  // namespace quarry::test
