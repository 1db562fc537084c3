#pragma once

#include <opencv2/core.hpp>

namespace quarry::command {

/// Frames in order, from a video, a camera or pictures.
class FrameSource {
public:
    FrameSource() = default;
    FrameSource(const FrameSource&) = delete;
    FrameSource& operator=(const FrameSource&) = delete;
    virtual ~FrameSource() = default;

    /// Reads the next frame, 8-bit B, G, R with packed rows.
    /// @return false after the last frame
    virtual bool Read(cv::Mat& frame) = 0;

    /// Skips the next frame.
    /// @return false after the last frame
    virtual bool Skip() = 0;

    virtual double framesPerSecond() const = 0;
    /// 0 when the number is unknown.
    virtual int frameCount() const = 0;
};

}  // namespace quarry::command
