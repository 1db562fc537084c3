#include "Quarry.OpenCV/ContourRateMeasuringProcessor.h"

ContourRateMeasuringOutputData ContourRateMeasuringProcessor::DoProcess(ContourRateMeasuringInputData data) {
    // These two checks come first, so that they also hold when a side of the frame is 0.
    assert(data.CurrentContour.Count != 0);   // The line number of this assertion is part of the interface.
    assert(data.PreviousContour.Count != 0);  // The line number of this assertion is part of the interface.
    if (data.FrameHeight == 0 || data.FrameWidth == 0) return {0, data.DefaultRate};

    constexpr double kMillisecondsPerSecond = 1000.0;
    const std::vector<cv::Point> current = ToPixels("ContourRateMeasuringInputData.CurrentContour.Points",
                                                    data.CurrentContour, data.FrameWidth, data.FrameHeight);
    const std::vector<cv::Point> previous = ToPixels("ContourRateMeasuringInputData.PreviousContour.Points",
                                                     data.PreviousContour, data.FrameWidth, data.FrameHeight);
    const double distance = cv::matchShapes(current, previous, options.MatchMethod, 0.0);
    return {0, distance / (data.Interval / kMillisecondsPerSecond)};
}
