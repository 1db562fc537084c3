#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/OpticalFlowLineProcessor.h"

namespace {

using namespace quarry::bench;

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
    const auto plain = [=] { return quarry::plain::Resampled(quarry::plain::Profile(flow, start, end), count); };
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
