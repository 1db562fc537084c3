#include <opencv2/core.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/MosseTracker.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using quarry::test::ImageOf;
using PlainMosseTracker = quarry::plain::MosseTracker;
using Call = UpdaterCall<MosseTrackerOptions, MosseTrackerData, MosseTrackerResult>;

constexpr uint32_t kMode = 1;
constexpr MosseTrackerOptions kOptions{0, {}, kMode};

MosseTrackerResult ResultOf(const PlainMosseTracker& tracker) {
    return {0, tracker.Rect(), static_cast<uint8_t>(tracker.found ? 1 : 0), {}};
}

void CompareUpdates(int side, const std::string& input, double floor, const std::vector<cv::Mat>& frames,
                    const PixelRect& rect) {
    const auto plain = [first = frames[0], rect] {
        return [tracker = std::make_shared<PlainMosseTracker>(kMode, first, rect)](const cv::Mat& frame) {
            tracker->Update(frame);
            return ResultOf(*tracker);
        };
    };
    const auto library = [rect] {
        return [call = std::make_shared<Call>(CreateCVMosseTracker, kOptions), rect](const cv::Mat& frame) {
            return call->Update({0, ImageOf(frame), rect});
        };
    };
    const auto read = [](const MosseTrackerResult& result) { return BytesOf(result); };
    Compare("MosseTracker", {"Update, window " + std::to_string(side), input, floor}, Fed(frames, plain, read),
            Fed(frames, library, read));
}

void CompareFirstFrames(int side, double floor, const cv::Mat& frame, const PixelRect& rect) {
    Compare("MosseTracker", {"first frame, window " + std::to_string(side), "640x480", floor}, Computed([frame, rect] {
                PlainMosseTracker tracker(kMode, frame, rect);
                tracker.Update(frame);
                return ResultOf(tracker);
            }),
            Computed([frame, rect] {
                return Call(CreateCVMosseTracker, kOptions).Update({0, ImageOf(frame), rect});
            }));
}

PixelRect Square(const cv::Point& place, int side) {
    return {static_cast<int16_t>(place.x), static_cast<int16_t>(place.y), static_cast<int16_t>(side),
            static_cast<int16_t>(side)};
}

const cv::Point kStart(200, 150);

/// A target that steps aside and, after half of the frames, back.
/// @param period  frames per step
std::vector<cv::Mat> MovingTarget(int side, int period) {
    constexpr int kFrames = 64;
    const cv::Mat target = quarry::test::Pattern(side, side, 3);
    cv::Point place = kStart;
    std::vector<cv::Mat> frames;
    for (int i = 0; i < kFrames; ++i) {
        frames.push_back(quarry::test::Ground(640, 480));
        quarry::test::Draw(frames.back(), target, place);
        if (i % period == 0) place += i < kFrames / 2 ? cv::Point(2, 1) : cv::Point(-2, -1);
    }
    return frames;
}

/// @param firstFrameFloor  the larger the window, the larger the share of the steps that training does only once
void CompareOnDrawnTarget(int side) {
    const PixelRect rect = Square(kStart, side);
    // Targets in footage keep their pixel in every other frame, or in more of them. Where one never does, both ways
    // transform two patches per frame, which is nearly all of the time.
    CompareUpdates(side, "640x480", 1.3, MovingTarget(side, 2), rect);
    CompareUpdates(side, "640x480, moves in every frame", 1.1, MovingTarget(side, 1), rect);
    CompareFirstFrames(side, 4.0, MovingTarget(side, 1)[0], rect);
}

}  // namespace

int main(int argc, char** argv) {
    CompareOnDrawnTarget(64);
    CompareOnDrawnTarget(128);
    const std::vector<cv::Mat> clip = quarry::test::PedestrianFrames(100);
    if (!clip.empty()) {
        CompareUpdates(64, "pedestrian clip", 1.3, clip, Square({640, 238}, 64));
        CompareUpdates(128, "pedestrian clip", 1.3, clip, Square({610, 210}, 128));
    }
    return Run(argc, argv);
}
