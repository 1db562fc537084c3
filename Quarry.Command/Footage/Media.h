/// @file
/// Pictures and videos, read and written with one-line failures that name the file.
#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>
#include <string>

#include "FrameSource.h"
#include "OutputFile.h"

namespace quarry::command {

/// @throws Failure  there is no such file
void CheckIsFile(const std::filesystem::path& path);

/// Whether it is a picture rather than a video, by its content, or by its name where its content tells nothing.
bool IsPicture(const std::filesystem::path& path);

/// An 8-bit B, G, R picture, rows packed.
/// @throws Failure  there is no such file or it is not a picture
cv::Mat ReadPicture(const std::filesystem::path& path);

/// A picture that appears under its name when it is complete.
class PictureFile {
public:
    /// @param path  ends as the pictures of its kind do
    /// @throws Failure  nothing can be written there
    explicit PictureFile(const std::filesystem::path& path);

    /// Once.
    void Write(const cv::Mat& picture);

private:
    std::filesystem::path path;
    OutputFile file;
};

/// Frames per second of what does not say how many it has.
constexpr double kUsualRate = 25;

/// The frames of a video file or a camera.
class VideoReader : public FrameSource {
public:
    /// @throws Failure  there is no such file or it is not a video
    explicit VideoReader(const std::filesystem::path& path);

    /// @throws Failure  there is no such camera
    explicit VideoReader(int camera);

    bool Read(cv::Mat& frame) override;
    bool Skip() override;
    double framesPerSecond() const override { return rate; }
    /// As the file declares it, 0 when it does not.
    int frameCount() const override { return count; }

private:
    void TakeOver();

    cv::VideoCapture capture;
    double rate = 0;
    int count = 0;
};

/// A Motion JPEG video that appears under its name when it is complete.
class VideoFile {
public:
    /// @param path  ends in `.avi`
    /// @throws Failure  nothing can be written there
    VideoFile(const std::filesystem::path& path, double framesPerSecond);

    /// All frames have the size of the first, which is even in both directions.
    void Write(const cv::Mat& frame);

    /// Completes the file and gives it its name.
    void Finish();

private:
    std::filesystem::path path;
    double rate;
    int written = 0;
    OutputFile file;
    cv::VideoWriter writer;
};

}  // namespace quarry::command
