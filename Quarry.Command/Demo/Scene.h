#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "Demo/Footage.h"

namespace quarry::command {

inline const cv::Size kSceneSize(640, 480);
constexpr double kSceneRate = 20;  ///< frames per second

/// Shapes that move over a still, textured background while the focus is lost and found again.
class Scene {
public:
    Scene();

    /// @param progress  0..1 of the clip: rules the focus
    cv::Mat Draw(double seconds, double progress) const;

private:
    cv::Mat background;
};

/// What surrounds the ball of the scene, in pixels.
cv::Rect BallAt(double seconds);

/// Pictures of different sharpness.
std::vector<Picture> DrawnPictures();

}  // namespace quarry::command
