#pragma once

#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>

/// The dense flow between two frames, in plain steps.
namespace quarry::plain {

/// What the options come to.
struct FlowParameters {
    int window;
    int levels;
    int iterations;
    int flags;
};

/// Those of detail 0.5 and quality 0.3.
constexpr FlowParameters kMiddle{17, 3, 3, 0};

inline cv::Mat GreyOfRgb(const cv::Mat& frame) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_RGB2GRAY);
    return grey;
}

/// Writes the flow between two grey frames.
inline void FindFlow(const cv::Mat& previous, const cv::Mat& current, cv::Mat& flow, const FlowParameters& p,
                     double scale = static_cast<double>(0.4F)) {
    cv::calcOpticalFlowFarneback(previous, current, flow, scale, p.levels, p.window, p.iterations, 3, 1.1, p.flags);
}

}  // namespace quarry::plain
