#include "support/Footage.h"

#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

namespace quarry::test {

std::filesystem::path MediaDirectory() {
    const char* const chosen = std::getenv("QUARRY_MEDIA");
    return chosen != nullptr ? std::filesystem::path(chosen) : std::filesystem::path(QUARRY_SOURCE_DIRECTORY) / "media";
}

std::vector<cv::Mat> PedestrianFrames(int count) {
    std::vector<cv::Mat> frames;
    cv::VideoCapture clip((MediaDirectory() / "vtest.avi").string());
    for (cv::Mat frame; static_cast<int>(frames.size()) < count && clip.read(frame);) frames.push_back(frame.clone());
    return frames;
}

cv::Mat ChangedPedestrians() {
    constexpr int kFrames = 20;
    constexpr int kChange = 40;
    const std::vector<cv::Mat> frames = PedestrianFrames(kFrames);
    if (frames.size() < kFrames) return {};
    cv::Mat change;
    cv::absdiff(frames.front(), frames.back(), change);
    cv::cvtColor(change, change, cv::COLOR_BGR2GRAY);
    cv::Mat changed = frames.back().clone();
    changed.setTo(cv::Scalar::all(0), change <= kChange);
    return changed;
}

}  // namespace quarry::test
