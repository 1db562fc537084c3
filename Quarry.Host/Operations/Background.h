#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// What the command line may set of the background model.
struct BackgroundSettings {
    float sensitivity = 0.5F;      ///< 0..1
    int32_t history = 500;         ///< frames
    float adaptationSeconds = 10;  ///< time constant, once the background is learnt
    float speedup = 4;             ///< divides the time constant while it is being learnt
};

/// What the model made of the last frame. The pictures are the model's own: valid until its next Update or its end.
struct BackgroundView {
    UpdaterState state;
    cv::Mat foreground;      ///< 255 foreground, 0 background
    cv::Mat background;      ///< B, G, R
    double foregroundShare;  ///< 0..1 of the frame's pixels
    double milliseconds;     ///< that the library took for this frame
};

/// The background model of one video.
class BackgroundModel {
public:
    explicit BackgroundModel(const BackgroundSettings& settings);

    /// Takes in a packed 8-bit B, G, R frame; later timestamps must be greater, the first must not be 0.
    /// @param timestamp  in ticks of 100 ns
    BackgroundView Take(const cv::Mat& frame, uint64_t timestamp);

private:
    Handle handle;
};

/// How the command names a state.
const char* NameOf(UpdaterState state);

/// The frame's foreground; the rest is black.
cv::Mat OnBlack(const cv::Mat& frame, const cv::Mat& foreground);

}  // namespace quarry::host
