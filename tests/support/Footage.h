#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry::test {

/// The folder of real footage: the environment's QUARRY_MEDIA, else `media` in the project's root.
std::filesystem::path MediaDirectory();

/// The first `count` frames of the pedestrian clip, 768 x 576; empty when the footage is not there, so that a test that
/// wants it can be skipped. `./dev setup` fetches it.
std::vector<cv::Mat> PedestrianFrames(int count);

/// A later frame of the clip, black where it is about the same as the first; empty when the footage is not there.
cv::Mat ChangedPedestrians();

}  // namespace quarry::test
