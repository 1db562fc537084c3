#include "Operations/Tracking.h"

#include "Operations/Call.h"
#include "Timing.h"

namespace quarry::host {

Tracker::Tracker(uint32_t mode, const cv::Rect& target)
    : handle(Create(CreateCVMosseTracker, MosseTrackerOptions{0, {}, mode})),
      initial{static_cast<int16_t>(target.x), static_cast<int16_t>(target.y), static_cast<int16_t>(target.width),
              static_cast<int16_t>(target.height)} {}

TrackView Tracker::Take(const cv::Mat& frame) {
    const Stopwatch watch;
    const auto result = Feed<MosseTrackerResult>(handle, MosseTrackerData{0, ImageOf(frame), initial}).result;
    const double milliseconds = watch.Milliseconds();
    const PixelRect& rect = result.TargetRect;
    return {cv::Rect(rect.X, rect.Y, rect.Width, rect.Height), result.Found == 1, milliseconds};
}

}  // namespace quarry::host
