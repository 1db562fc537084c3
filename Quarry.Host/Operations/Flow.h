#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

#include "Operations/Handle.h"

namespace quarry::host {

/// What the command line may set of the flow; what it leaves out is the library's to choose.
struct FlowSettings {
    std::optional<float> detail;   ///< 0..1
    std::optional<float> quality;  ///< 0..1
};

/// How the last frame moved. The field is the calculator's own: valid until its next Take or its end.
struct FlowView {
    cv::Mat motion;       ///< two floats per pixel: pixels to the right and down since the previous frame
    double milliseconds;  ///< that the library took for this frame
};

/// The motion of every pixel from frame to frame of one video.
class FlowCalculator {
public:
    explicit FlowCalculator(const FlowSettings& settings);

    /// Takes in a packed 8-bit B, G, R frame.
    FlowView Take(const cv::Mat& frame);

private:
    Handle handle;
    cv::Mat redFirst;  ///< the frame as this operation reads it
};

/// A line through the frame, in fractions of its width and height.
struct RelativeLine {
    cv::Point2f start;
    cv::Point2f end;
};

/// The motion across a line.
class FlowLineMeter {
public:
    FlowLineMeter();

    /// Pixels across the line, from its start to its end; positive to its right as seen from the start. Not a number
    /// where rounding leaves none.
    /// @param motion  as a FlowView has it
    std::vector<float> Measure(const cv::Mat& motion, const RelativeLine& line, int values);

private:
    Handle handle;
};

}  // namespace quarry::host
