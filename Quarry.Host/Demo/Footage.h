#pragma once

#include <filesystem>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace quarry::host {

struct Picture {
    std::string name;
    cv::Mat pixels;
};

/// A video that every section of the demo plays for itself, from its first frame.
struct Clip {
    std::string name;
    bool drawn;  ///< by the demo itself, for want of real footage
    cv::Size size;
    double framesPerSecond;
    int frames;       ///< that are played
    int framesInAll;  ///< that there are

    /// Starts anew; each call of what it gives fills in the next frame, or says false after the last one.
    std::function<std::function<bool(cv::Mat&)>()> Play;
};

/// What the demo runs on.
struct Footage {
    Clip clip;
    std::vector<Picture> pictures;
    bool picturesDrawn;
};

/// `vtest.avi` and some pictures of the folder. What is not there is drawn, and one line on stderr says so.
Footage OpenFootage(const std::filesystem::path& folder);

}  // namespace quarry::host
