#include "Media.h"

#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <system_error>
#include <vector>

#include "Console.h"

namespace quarry::command {
namespace {

constexpr double kHighestRate = 10'000;

/// Opens the file with the backends that read files only. By itself OpenCV would go on to try cameras and numbered
/// pictures.
bool Open(cv::VideoCapture& capture, const std::filesystem::path& path) {
    return capture.open(path.string(), cv::CAP_FFMPEG) || capture.open(path.string(), cv::CAP_OPENCV_MJPEG);
}

int DeclaredFrames(const cv::VideoCapture& capture) {
    const double declared = capture.get(cv::CAP_PROP_FRAME_COUNT);
    return declared > 0 && declared < 1e9 ? static_cast<int>(declared) : 0;
}

}  // namespace

void CheckIsFile(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) throw Failure(path.string() + ": no such file");
    if (std::filesystem::is_directory(path, ignored)) throw Failure(path.string() + ": is a folder");
}

bool IsPicture(const std::filesystem::path& path) {
    const SilencedStderr silence;
    return path.extension() == ".png" || path.extension() == ".jpg" || cv::haveImageReader(path.string());
}

cv::Mat ReadPicture(const std::filesystem::path& path) {
    CheckIsFile(path);
    const SilencedStderr silence;
    cv::Mat picture = cv::imread(path.string(), cv::IMREAD_COLOR);
    if (picture.empty()) throw Failure(path.string() + ": not a picture that can be read");
    return picture;
}

PictureFile::PictureFile(const std::filesystem::path& path_) : path(path_), file(path_) {}

void PictureFile::Write(const cv::Mat& picture) {
    std::vector<uchar> bytes;
    cv::imencode(path.extension().string(), picture, bytes);
    std::ofstream stream(file.temporary(), std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw Failure(path.string() + ": cannot be written in full");
    file.Keep();
}

VideoReader::VideoReader(const std::filesystem::path& path) {
    CheckIsFile(path);
    const SilencedStderr silence;
    if (!Open(capture, path)) throw Failure(path.string() + ": not a video that can be read");
    ReadProperties();
}

VideoReader::VideoReader(int camera) {
    const SilencedStderr silence;
    if (!capture.open(camera)) throw Failure(std::to_string(camera) + ": no such file, and no camera of that number");
    ReadProperties();
}

void VideoReader::ReadProperties() {
    rate = capture.get(cv::CAP_PROP_FPS);
    if (!(rate > 0 && rate <= kHighestRate)) rate = kUsualRate;
    count = DeclaredFrames(capture);
}

bool VideoReader::Read(cv::Mat& frame) {
    const SilencedStderr silence;
    return capture.read(frame) && !frame.empty();
}

bool VideoReader::Skip() {
    const SilencedStderr silence;
    return capture.grab();
}

VideoFile::VideoFile(const std::filesystem::path& path_, double framesPerSecond)
    : path(path_), rate(framesPerSecond), file(path_) {}

void VideoFile::Write(const cv::Mat& frame) {
    const SilencedStderr silence;
    if (written == 0) {
        const int codec = cv::VideoWriter::fourcc('M', 'J', 'P', 'G');
        if (!writer.open(file.temporary().string(), codec, rate, frame.size())) {
            throw Failure(path.string() + ": the video cannot be written");
        }
    }
    writer.write(frame);
    ++written;
}

void VideoFile::Finish() {
    const SilencedStderr silence;
    writer.release();
    // The writer does not report a full disk, so the frames in the file are counted instead.
    cv::VideoCapture capture;
    if (!Open(capture, file.temporary()) || DeclaredFrames(capture) != written) {
        throw Failure(path.string() + ": the video could not be written in full");
    }
    file.Keep();
}

}  // namespace quarry::command
