/// @file
/// Reads and writes pictures and videos. What fails gives a one-line message that names the file.
#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>
#include <string>

#include "FrameSource.h"
#include "OutputFile.h"

namespace quarry::command {

/// @throws Failure  nothing of that name exists, or it is a folder
void CheckIsFile(const std::filesystem::path& path);

/// Whether a file is a picture rather than a video, by the ending of its name or by its content.
bool IsPicture(const std::filesystem::path& path);

/// Reads a picture as 8-bit B, G, R with packed rows.
/// @throws Failure  there is no such file or it is not a picture
cv::Mat ReadPicture(const std::filesystem::path& path);

/// A picture that appears under its name when it is complete.
class PictureFile {
public:
    /// @param path  ends in `.png` or `.jpg`, which decides the format
    /// @throws Failure  nothing can be written there
    explicit PictureFile(const std::filesystem::path& path);

    /// Writes the picture. Call it once.
    /// @throws Failure  it cannot be written
    void Write(const cv::Mat& picture);

private:
    std::filesystem::path path;
    OutputFile file;
};

/// The frames per second of an input that does not tell its rate.
constexpr double kUsualRate = 25;

/// Reads the frames of a video file or of a camera.
class VideoReader : public FrameSource {
public:
    /// @throws Failure  there is no such file or it is not a video
    explicit VideoReader(const std::filesystem::path& path);

    /// @throws Failure  there is no such camera
    explicit VideoReader(int camera);

    bool Read(cv::Mat& frame) override;
    bool Skip() override;
    double framesPerSecond() const override { return rate; }
    /// The number that the file declares, 0 when it declares none.
    int frameCount() const override { return count; }

private:
    void ReadProperties();

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
    /// @throws Failure  the disk did not take all of it
    void Finish();

private:
    std::filesystem::path path;
    double rate;
    int written = 0;
    OutputFile file;
    cv::VideoWriter writer;
};

}  // namespace quarry::command
