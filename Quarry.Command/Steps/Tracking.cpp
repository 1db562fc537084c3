#include "Tracking.h"

#include <Quarry/HostOpenCV.hpp>

#include "Stopwatch.h"

namespace quarry::command {

Tracker::Tracker(const cv::Rect& target, TrackerMode mode)
    : tracker({mode}), start({target.x, target.y, target.width, target.height}) {}

TrackedTarget Tracker::Update(const cv::Mat& frame) {
    const ImageView view = ViewOf(frame);
    const Stopwatch watch;
    const bool found = start ? tracker.Start(view, *start) : tracker.Update(view);
    const double milliseconds = watch.Milliseconds();
    start.reset();
    const Box target = tracker.Result().target;
    return {{target.x, target.y, target.width, target.height}, found, milliseconds};
}

}  // namespace quarry::command
