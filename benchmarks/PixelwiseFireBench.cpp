#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

double Linear(double channel) {
    const double c = channel / 255.0;
    return (c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.4) : c / 12.92) * 100.0;
}

double Compressed(double t) {
    return t > 0.008856 ? std::pow(t, 1.0 / 3.0) : 7.787 * t + 16.0 / 116.0;
}

bool LightnessIsFlame(double L, double a) {
    const double t1 = 4200.0 - (a + 42.0) * (a + 42.0);
    const double bound1 = t1 > 0 ? 34.0 + std::sqrt(t1) : L + 1.0;
    const double t2 = 1600.0 - (a + 7.0) * (a + 7.0);
    const double bound2 = t2 > 0 ? std::sqrt(t2) + 59.5 : L - 1.0;
    if (!(a > -23.0) || !(a < 51.0)) return false;
    const bool passes = (a > 17.9 && L > 59.0) || (a <= 17.9 && L > bound1);
    if (!passes) return false;
    return a > 5.0 ? -0.54 * a + 92.5 > L : bound2 > L;
}

bool YellowIsFlame(double a, double b) {
    return a > 4.0 ? b > 1.1 * a - 12.0 : b > 0.13 * ((a - 6.0) * (a - 6.0)) - 8.0;
}

bool IsFlame(const cv::Vec3b& pixel) {
    const double red = Linear(pixel[2]);
    const double green = Linear(pixel[1]);
    const double blue = Linear(pixel[0]);
    const double x = Compressed((0.4124 * red + 0.3576 * green + 0.1805 * blue) / 95.047);
    const double y = Compressed((0.2126 * red + 0.7152 * green + 0.0722 * blue) / 100.0);
    const double z = Compressed((0.0193 * red + 0.1192 * green + 0.9505 * blue) / 108.883);
    const double L = 116.0 * y - 16.0;
    const double a = 500.0 * (x - y);
    const double b = 200.0 * (y - z);
    return LightnessIsFlame(L, a) && YellowIsFlame(a, b) && L > -0.95 * b + 92.0;
}

cv::Mat Plain(const cv::Mat& frame) {
    cv::Mat candidates(frame.size(), CV_8UC1);
    for (int y = 0; y < frame.rows; ++y) {
        for (int x = 0; x < frame.cols; ++x) candidates.at<uchar>(y, x) = IsFlame(frame.at<cv::Vec3b>(y, x)) ? 255 : 0;
    }
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(candidates, contours, cv::RETR_TREE, cv::CHAIN_APPROX_NONE);
    double bestArea = 0;
    int best = 0;
    for (std::size_t i = 0; i < contours.size(); ++i) {
        const double area = cv::contourArea(contours[i], false);
        if (area <= bestArea) continue;
        bestArea = area;
        best = static_cast<int>(i);
    }
    cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8UC1);
    if (bestArea > 4.0) cv::drawContours(mask, contours, best, cv::Scalar(255), cv::FILLED);
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, {11, 11}, {5, 5});
    cv::dilate(mask, mask, kernel, {-1, -1}, 2, cv::BORDER_CONSTANT);
    return mask;
}

void CompareOn(const cv::Mat& frame, const std::string& name, const std::string& input, double floor) {
    Compare("PixelwiseFire", {name, input, floor}, Computed([frame] { return Plain(frame); }),
            Called<ProcessOptions, FireInputData, FireOutputData>(
                CreateCVPixelwiseFireProcessor, {}, {0, ImageOf(frame)}, [](const FireOutputData& result) {
                    return BytesOf(
                        cv::Mat(result.FireMask->height, result.FireMask->width, CV_8UC1, result.FireMask->data));
                }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(MovingSquare(640, 480, 0), "no fire", "640x480", 100);
    CompareOn(MovingSquare(1920, 1080, 0), "no fire", "1920x1080", 100);
    for (const cv::Mat& frame : PedestrianFrames(1)) CompareOn(frame, "pedestrians", "768x576", 80);
    CompareOn(FireScene(640, 480), "fire", "640x480", 40);
    CompareOn(FireScene(1920, 1080), "fire", "1920x1080", 40);
    return Run(argc, argv);
}
