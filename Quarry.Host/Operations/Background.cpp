#include "Operations/Background.h"

#include "Operations/Call.h"
#include "Timing.h"

namespace quarry::host {

BackgroundModel::BackgroundModel(const BackgroundSettings& settings)
    : handle(Create(CreateCVBackgroundModel, BackgroundOptions{0, settings.sensitivity, settings.history,
                                                               settings.adaptationSeconds, settings.speedup})) {}

BackgroundView BackgroundModel::Take(const cv::Mat& frame, uint64_t timestamp) {
    const Stopwatch watch;
    const auto [state, result] = Feed<BackgroundResult>(handle, BackgroundData{0, ImageOf(frame, timestamp), 0});
    const double milliseconds = watch.Milliseconds();

    const cv::Mat foreground(frame.size(), CV_8UC1, result.ForegroundMask);
    const cv::Mat background(frame.size(), CV_8UC3, result.BackgroundImage->data);
    const double share = cv::countNonZero(foreground) / static_cast<double>(frame.total());
    return {state, foreground, background, share, milliseconds};
}

const char* NameOf(UpdaterState state) {
    switch (state) {
        case NoResult:
            return "NoResult";
        case Accumulating:
            return "Accumulating";
        case Ready:
            return "Ready";
    }
    return "unknown";
}

cv::Mat OnBlack(const cv::Mat& frame, const cv::Mat& foreground) {
    cv::Mat picture(frame.size(), frame.type(), cv::Scalar::all(0));
    frame.copyTo(picture, foreground);
    return picture;
}

}  // namespace quarry::host
