#include "Demo/Moving.h"

#include <Quarry/HostOpenCV.hpp>
#include <cstddef>
#include <memory>

#include "Demo/Html.h"
#include "Progress.h"
#include "Ticks.h"

namespace quarry::command {
namespace {

static_assert(kMovingEvery == 2, "the page says so in words");

/// The frames that are taken.
std::function<bool(cv::Mat&)> PlayEvery(const Clip& clip) {
    return [next = clip.Play(), played = 0](cv::Mat& frame) mutable {
        while (next(frame)) {
            if (played++ % kMovingEvery == 0) return true;
        }
        return false;
    };
}

std::vector<cv::Mat> Learn(const Clip& clip) {
    std::vector<cv::Mat> foregrounds;
    BackgroundModel model;
    Progress progress("what moves", "frames", MovingFrames(clip));
    const auto next = PlayEvery(clip);
    const double rate = clip.framesPerSecond / kMovingEvery;
    cv::Mat frame;
    for (int i = 0; next(frame); ++i) {
        model.Update(ViewOf(frame, TimestampOf(i, rate)));
        foregrounds.push_back(CloneOf(model.Result().foreground()));
        progress.Advance();
    }
    return foregrounds;
}

}  // namespace

std::function<bool(MovingFrame&)> PlayMoving(const Clip& clip) {
    const std::vector<cv::Mat>& foregrounds = clip.Foregrounds();
    return [&foregrounds, next = PlayEvery(clip), interval = MovingInterval(clip),
            played = 0](MovingFrame& frame) mutable {
        const auto place = static_cast<std::size_t>(played);
        if (place == foregrounds.size() || !next(frame.pixels)) return false;
        frame.index = played;
        frame.seconds = played * interval;
        frame.foreground = foregrounds[place];
        ++played;
        return true;
    };
}

int MovingFrames(const Clip& clip) {
    return (clip.frames + kMovingEvery - 1) / kMovingEvery;
}

double MovingInterval(const Clip& clip) {
    return kMovingEvery / clip.framesPerSecond;
}

std::string MovingInput(const Clip& clip) {
    return "what moves in " + html::Escape(clip.name) + ", " + std::to_string(MovingFrames(clip)) +
           " frames (every second one)";
}

std::function<const std::vector<cv::Mat>&()> ForegroundsOf(const Clip& clip) {
    const auto foregrounds = std::make_shared<std::vector<cv::Mat>>();
    return [clip, foregrounds]() -> const std::vector<cv::Mat>& {
        if (foregrounds->empty()) *foregrounds = Learn(clip);
        return *foregrounds;
    };
}

}  // namespace quarry::command
