#pragma once

#include <Quarry/Host.hpp>
#include <filesystem>
#include <functional>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Body.h"

namespace quarry::command {

struct Picture {
    std::string name;
    cv::Mat pixels;
};

/// Something in the clip that is worth following.
struct ClipTarget {
    std::string what;
    int frame;  ///< that shows it first
    cv::Rect place;
};

/// A video that every section of the demo plays for itself, from its first frame.
struct Clip {
    std::string name;
    bool drawn = false;  ///< by the demo itself, for want of real footage
    cv::Size size;
    double framesPerSecond = 0;
    int frames = 0;       ///< that are played
    int framesInAll = 0;  ///< that there are

    ClipTarget target;
    std::optional<Body> body;  ///< of someone in the frame that first shows the target
    RelLine line;              ///< that something crosses

    /// Starts anew; each call of what it gives fills in the next frame, or says false after the last one.
    std::function<std::function<bool(cv::Mat&)>()> Play;

    /// Masks of what moves in the frames that Demo/Moving.h takes; learnt when they are first asked for.
    std::function<const std::vector<cv::Mat>&()> Foregrounds;
};

/// The frame that first shows the clip's target.
cv::Mat TargetFrameOf(const Clip& clip);

/// What the demo runs on.
struct Footage {
    Clip clip;
    std::vector<Picture> pictures;
    bool picturesDrawn;
    std::vector<Picture> portraits;   ///< pictures that are known to show faces; often none
    std::filesystem::path faceModel;  ///< cascade that finds faces; need not be there
};

/// `vtest.avi` and some pictures of the folder. What is not there is drawn, and one line on stderr says so.
/// @param faceModel  taken over as it is
Footage OpenFootage(const std::filesystem::path& folder, const std::filesystem::path& faceModel);

}  // namespace quarry::command
