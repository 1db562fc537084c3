#include "support/Footage.h"

#include <cstdlib>
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

}  // namespace quarry::test
