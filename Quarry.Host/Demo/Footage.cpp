#include "Demo/Footage.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <system_error>

#include "Console.h"
#include "Demo/Scene.h"
#include "Media.h"

namespace quarry::host {
namespace {

constexpr const char* kClipName = "vtest.avi";
constexpr int kFramesPlayed = 300;
constexpr std::size_t kPictures = 8;
/// Shown first where they are there: from plainly blurred to richly textured.
constexpr const char* kPreferred[] = {"building.jpg", "fruits.jpg",       "baboon.jpg",    "home.jpg",
                                      "aloeL.jpg",    "text_defocus.jpg", "butterfly.jpg", "text_motion.jpg"};

/// Plays a video's first frames and stops where the demo has enough.
std::function<bool(cv::Mat&)> PlayFile(const std::filesystem::path& path) {
    const auto video = std::make_shared<VideoReader>(path);
    return [video, played = 0](cv::Mat& frame) mutable { return played++ < kFramesPlayed && video->Read(frame); };
}

/// The frames are counted by reading them: what a file declares need not hold.
std::optional<Clip> RealClip(const std::filesystem::path& path) try {
    VideoReader video(path);
    cv::Size size;
    int frames = 0;
    for (cv::Mat frame; frames < kFramesPlayed && video.Read(frame); ++frames) size = frame.size();
    if (frames == 0) return std::nullopt;
    const int inAll = std::max(video.frameCount(), frames);
    return Clip{
        kClipName, false, size, video.framesPerSecond(), frames, frames < kFramesPlayed ? frames : inAll, [path] {
            return PlayFile(path);
        }};
} catch (const Failure&) {
    return std::nullopt;
}

Clip DrawnClip() {
    return {"drawn scene", true, kSceneSize, kSceneRate, kFramesPlayed, kFramesPlayed, [] {
                const auto scene = std::make_shared<Scene>();
                return [scene, played = 0](cv::Mat& frame) mutable {
                    if (played == kFramesPlayed) return false;
                    frame = scene->Draw(played / kSceneRate, static_cast<double>(played) / kFramesPlayed);
                    ++played;
                    return true;
                };
            }};
}

bool IsPicture(const std::filesystem::path& path) {
    return path.extension() == ".jpg" || path.extension() == ".png";
}

/// The preferred names, then all others by name.
std::vector<std::filesystem::path> Candidates(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        if (IsPicture(entry.path())) paths.push_back(entry.path());
    }
    const auto rank = [](const std::filesystem::path& path) {
        return std::find(std::begin(kPreferred), std::end(kPreferred), path.filename().string());
    };
    std::sort(paths.begin(), paths.end(), [&](const auto& left, const auto& right) {
        return std::pair(rank(left), left) < std::pair(rank(right), right);
    });
    return paths;
}

std::vector<Picture> RealPictures(const std::filesystem::path& folder) {
    std::vector<Picture> pictures;
    for (const std::filesystem::path& path : Candidates(folder)) {
        if (pictures.size() == kPictures) break;
        try {
            pictures.push_back({path.filename().string(), ReadPicture(path)});
        } catch (const Failure&) {
            continue;  // one that cannot be read is passed over, like one that is not there
        }
    }
    return pictures;
}

}  // namespace

Footage OpenFootage(const std::filesystem::path& folder) {
    const std::optional<Clip> clip = RealClip(folder / kClipName);
    std::vector<Picture> pictures = RealPictures(folder);
    const bool picturesDrawn = pictures.empty();
    if (picturesDrawn) pictures = DrawnPictures();
    if (!clip || picturesDrawn) {
        const std::string missing = clip ? "pictures" : picturesDrawn ? "vtest.avi and pictures" : "vtest.avi";
        PrintError(folder.string() + ": no " + missing + " there that can be read; the demo draws its own");
    }
    return {clip ? *clip : DrawnClip(), std::move(pictures), picturesDrawn};
}

}  // namespace quarry::host
