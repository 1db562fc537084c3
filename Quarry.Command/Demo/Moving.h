/// @file
/// What moves in the clip, learnt once for all sections that look at it.
#pragma once

#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "Demo/Footage.h"

namespace quarry::command {

/// A frame with what moves in it.
struct MovingFrame {
    int index;  ///< among the frames that are played
    double seconds;
    cv::Mat pixels;
    cv::Mat foreground;  ///< 255 foreground, 0 background
};

/// Of so many frames of the clip one is taken.
constexpr int kMovingEvery = 2;

/// The frames of the clip that are taken, with what moves in it; starts anew as Clip::Play does.
std::function<bool(MovingFrame&)> PlayMoving(const Clip& clip);

/// How many frames PlayMoving plays.
int MovingFrames(const Clip& clip);

/// The seconds from one frame of PlayMoving to the next.
double MovingInterval(const Clip& clip);

/// What the frames of PlayMoving are, for the table. HTML.
std::string MovingInput(const Clip& clip);

/// What Clip::Foregrounds is of the clip.
std::function<const std::vector<cv::Mat>&()> ForegroundsOf(const Clip& clip);

}  // namespace quarry::command
