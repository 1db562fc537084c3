#include "Demo/Footage.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <system_error>

#include "Console.h"
#include "Demo/Moving.h"
#include "Demo/Scene.h"
#include "Media.h"

namespace quarry::command {
namespace {

constexpr const char* kClipName = "vtest.avi";
constexpr int kFramesPlayed = 300;
constexpr std::size_t kPictures = 8;
constexpr int kBallFrame = 40;  // of the drawn clip, when the ball is well within it
/// Shown first where they are there: from plainly blurred to richly textured.
constexpr const char* kPreferred[] = {"building.jpg", "fruits.jpg",       "baboon.jpg",    "home.jpg",
                                      "aloeL.jpg",    "text_defocus.jpg", "butterfly.jpg", "text_motion.jpg"};

constexpr const char* kPortraits[] = {"basketball1.png", "messi5.jpg", "basketball2.png"};

/// Plays a video's first frames and stops where the demo has enough.
std::function<bool(cv::Mat&)> PlayFile(const std::filesystem::path& path) {
    const auto video = std::make_shared<VideoReader>(path);
    return [video, played = 0](cv::Mat& frame) mutable { return played++ < kFramesPlayed && video->Read(frame); };
}

/// What is to be seen in the clip of pedestrians.
const cv::Size kPedestriansSize(768, 576);
const ClipTarget kWalkers = {"two walkers", 30, {663, 248, 55, 96}};
const RelLine kAcrossTheRoad = {{0.62F, 0.72F}, {0.62F, 0.2F}};

/// One of the walkers, seen from behind. In pixels.
constexpr float kWalkersPoints[kBodyPoints][2] = {
    {648, 259}, {647, 257}, {650, 257}, {643, 258}, {653, 258}, {636, 273}, {662, 274}, {633, 288}, {662, 290},
    {631, 304}, {658, 305}, {643, 309}, {652, 309}, {644, 328}, {653, 327}, {646, 348}, {653, 341}};

Body WalkersBody() {
    Body body{};
    for (std::size_t i = 0; i < body.size(); ++i) {
        body[i] = {(kWalkersPoints[i][0] + 0.5F) / static_cast<float>(kPedestriansSize.width),
                   (kWalkersPoints[i][1] + 0.5F) / static_cast<float>(kPedestriansSize.height)};
    }
    return body;
}

/// In a clip that nothing is known of: the middle, from the start.
ClipTarget MiddleOf(const cv::Size& size) {
    const cv::Size part(std::max(2, size.width / 4), std::max(2, size.height / 4));
    return {
        "the middle of the first frame", 0, {{(size.width - part.width) / 2, (size.height - part.height) / 2}, part}};
}

/// The frames are counted by reading them: what a file declares need not hold.
std::optional<Clip> RealClip(const std::filesystem::path& path) try {
    VideoReader video(path);
    cv::Size size;
    int frames = 0;
    for (cv::Mat frame; frames < kFramesPlayed && video.Read(frame); ++frames) size = frame.size();
    if (frames == 0) return std::nullopt;
    const bool pedestrians = size == kPedestriansSize && frames > kWalkers.frame;
    Clip clip;
    clip.name = kClipName;
    clip.size = size;
    clip.framesPerSecond = video.framesPerSecond();
    clip.frames = frames;
    clip.framesInAll = frames < kFramesPlayed ? frames : std::max(video.frameCount(), frames);
    clip.target = pedestrians ? kWalkers : MiddleOf(size);
    if (pedestrians) clip.body = WalkersBody();
    clip.line = pedestrians ? kAcrossTheRoad : RelLine{{0.5F, 0.9F}, {0.5F, 0.1F}};
    clip.Play = [path] { return PlayFile(path); };
    return clip;
} catch (const Failure&) {
    return std::nullopt;
}

Clip DrawnClip() {
    Clip clip;
    clip.name = "drawn scene";
    clip.drawn = true;
    clip.size = kSceneSize;
    clip.framesPerSecond = kSceneRate;
    clip.frames = kFramesPlayed;
    clip.framesInAll = kFramesPlayed;
    clip.target = {"the spotted ball", kBallFrame, BallAt(kBallFrame / kSceneRate)};
    clip.line = {{0.5F, 0.95F}, {0.5F, 0.05F}};
    clip.Play = [] {
        const auto scene = std::make_shared<Scene>();
        return [scene, played = 0](cv::Mat& frame) mutable {
            if (played == kFramesPlayed) return false;
            frame = scene->Draw(played / kSceneRate, static_cast<double>(played) / kFramesPlayed);
            ++played;
            return true;
        };
    };
    return clip;
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

std::vector<Picture> Readable(const std::vector<std::filesystem::path>& candidates) {
    std::vector<Picture> pictures;
    for (const std::filesystem::path& path : candidates) {
        if (pictures.size() == kPictures) break;
        try {
            pictures.push_back({path.filename().string(), ReadPicture(path)});
        } catch (const Failure&) {
            continue;  // one that cannot be read is passed over, like one that is not there
        }
    }
    return pictures;
}

std::vector<Picture> Portraits(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    for (const char* const name : kPortraits) paths.push_back(folder / name);
    return Readable(paths);
}

}  // namespace

cv::Mat TargetFrameOf(const Clip& clip) {
    const auto next = clip.Play();
    cv::Mat frame;
    for (int i = 0; i <= clip.target.frame && next(frame); ++i) continue;
    return frame;
}

Footage OpenFootage(const std::filesystem::path& folder, const std::filesystem::path& faceModel) {
    const std::optional<Clip> real = RealClip(folder / kClipName);
    std::vector<Picture> pictures = Readable(Candidates(folder));
    const bool picturesDrawn = pictures.empty();
    if (picturesDrawn) pictures = DrawnPictures();
    if (!real || picturesDrawn) {
        const std::string missing = real ? "pictures" : picturesDrawn ? "vtest.avi and pictures" : "vtest.avi";
        PrintError(folder.string() + ": no " + missing + " there that can be read; the demo draws its own");
    }
    Clip clip = real ? *real : DrawnClip();
    clip.Foregrounds = ForegroundsOf(clip);
    return {std::move(clip), std::move(pictures), picturesDrawn, Portraits(folder), faceModel};
}

}  // namespace quarry::command
