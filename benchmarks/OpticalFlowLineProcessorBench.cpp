#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"

namespace {

using namespace quarry::bench;

float Length(const cv::Point2f& vector) {
    return std::sqrt(vector.x * vector.x + vector.y * vector.y);
}

float DistanceFromLine(const cv::Point2f& q, const cv::Point2f& p1, const cv::Point2f& p2) {
    const float a = Length(q - p1);
    const float b = Length(q - p2);
    const float c = Length(p2 - p1);
    const float halfPerimeter = (a + b + c) / 2.0F;
    const float squaredArea = (halfPerimeter - a) * halfPerimeter * (halfPerimeter - b) * (halfPerimeter - c);
    const double area = std::sqrt(static_cast<double>(squaredArea));
    return static_cast<float>(2.0 * area / static_cast<double>(c));
}

std::vector<float> Profile(const cv::Mat& flow, const cv::Point2f& p1, const cv::Point2f& p2, cv::LineIterator line) {
    std::vector<float> distances;
    for (int i = 0; i < line.count; ++i, ++line) {
        const cv::Point pixel = line.pos();
        const auto& motion = flow.at<cv::Point2f>(pixel);
        const cv::Point2f displaced(static_cast<float>(pixel.x) + motion.x, static_cast<float>(pixel.y) + motion.y);
        const float distance = DistanceFromLine(displaced, p1, p2);
        const float cross = (p2.x - p1.x) * (displaced.y - p1.y) - (p2.y - p1.y) * (displaced.x - p1.x);
        distances.push_back(cross < 0.0F ? -distance : distance);
    }
    return distances;
}

/// The profile of a line that has more pixels than values are wanted.
std::vector<float> Plain(const cv::Mat& flow, const cv::Point& start, const cv::Point& end, int count) {
    const std::vector<float> profile = Profile(flow, start, end, cv::LineIterator(flow, start, end, 8, false));
    const int length = static_cast<int>(profile.size());
    std::vector<float> values(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const float place = static_cast<float>(i) * static_cast<float>(length) / static_cast<float>(count);
        const int index = static_cast<int>(std::floor(static_cast<double>(place) + 0.5));
        values[static_cast<std::size_t>(i)] = profile[static_cast<std::size_t>(std::min(index, length - 1))];
    }
    return values;
}

std::string ReadValues(const std::vector<float>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float)};
}

void CompareOn(const cv::Size& size, int count, double floor) {
    cv::Mat flow(size, CV_32FC2);
    cv::RNG(1).fill(flow, cv::RNG::UNIFORM, -20.0, 20.0);
    const auto matrix = std::make_shared<AbsVectorMatrix>(
        AbsVectorMatrix{size.width, size.height, reinterpret_cast<AbsVector*>(flow.data)});
    const cv::Point start(0, 0);
    const cv::Point end(size);
    const auto plain = [=] { return Plain(flow, start, end, count); };
    const OFLineData input{0, {}, matrix.get(), 0.0F, 0.0F, 1.0F, 1.0F, count, 0};
    const Way library = Called<OFLineOptions, OFLineData, OFLineResult>(
        CreateCVOpticalFlowLineProcessor, {}, input, [matrix](const OFLineResult& result) {
            return ReadValues({result.Values, result.Values + result.ValuesCount});
        });
    const std::string name = std::to_string(size.width) + "x" + std::to_string(size.height);
    Compare("OpticalFlowLineProcessor", {std::to_string(count) + " values", name, floor},
            {[plain] { benchmark::DoNotOptimize(plain()); }, [plain] { return ReadValues(plain()); }}, library);
}

}  // namespace

int main(int argc, char** argv) {
    for (const int count : {32, 128}) {
        CompareOn({640, 480}, count, 5.0);
        CompareOn({1920, 1080}, count, 4.0);
    }
    return Run(argc, argv);
}
