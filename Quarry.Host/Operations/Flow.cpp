#include "Operations/Flow.h"

#include <opencv2/imgproc.hpp>

#include "Operations/Call.h"
#include "Timing.h"

namespace quarry::host {
namespace {

/// Outside the range of a setting: the library stays with its own choice.
constexpr float kUnset = -1;

}  // namespace

FlowCalculator::FlowCalculator(const FlowSettings& settings)
    : handle(Create(CreateCVDenseOpticalFlowCalculator,
                    OFCOptions{0, settings.detail.value_or(kUnset), 0, settings.quality.value_or(kUnset)})) {}

FlowView FlowCalculator::Take(const cv::Mat& frame) {
    cv::cvtColor(frame, redFirst, cv::COLOR_BGR2RGB);
    const Stopwatch watch;
    const OFCResult result = Feed<OFCResult>(handle, OFCData{0, ImageOf(redFirst)}).result;
    const double milliseconds = watch.Milliseconds();
    return {cv::Mat(frame.size(), CV_32FC2, result.FlowMatrix->data), milliseconds};
}

FlowLineMeter::FlowLineMeter() : handle(Create(CreateCVOpticalFlowLineProcessor, OFLineOptions{})) {}

std::vector<float> FlowLineMeter::Measure(const cv::Mat& motion, const RelativeLine& line, int values) {
    CV_Assert(motion.type() == CV_32FC2 && motion.isContinuous());
    AbsVectorMatrix field = {motion.cols, motion.rows, reinterpret_cast<AbsVector*>(motion.data)};
    const OFLineData input = {0, {}, &field, line.start.x, line.start.y, line.end.x, line.end.y, values, 0};
    const Processed<OFLineResult> result(handle, input);
    return {result->Values, result->Values + result->ValuesCount};
}

}  // namespace quarry::host
