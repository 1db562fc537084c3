#include "OpenFrames.h"

#include <glob.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <opencv2/imgcodecs.hpp>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "Console.h"
#include "Media.h"
#include "Numbers.h"

namespace quarry::command {
namespace {

namespace fs = std::filesystem;

class Pictures : public FrameSource {
public:
    explicit Pictures(std::vector<fs::path> paths_) : paths(std::move(paths_)) {}

    bool Read(cv::Mat& frame) override {
        if (next == paths.size()) return false;
        frame = ReadPicture(paths[next]);
        if (size.empty()) size = frame.size();
        if (frame.size() != size) {
            throw Failure(paths[next].string() + ": is " + Text(frame.size()) + " pixels, but those before it are " +
                          Text(size));
        }
        ++next;
        return true;
    }

    bool Skip() override {
        if (next == paths.size()) return false;
        ++next;
        return true;
    }

    double framesPerSecond() const override { return kUsualRate; }
    int frameCount() const override { return static_cast<int>(paths.size()); }

private:
    static std::string Text(const cv::Size& size) {
        return std::to_string(size.width) + " x " + std::to_string(size.height);
    }

    std::vector<fs::path> paths;
    std::size_t next = 0;
    cv::Size size;  ///< of every picture
};

std::unique_ptr<FrameSource> SortedPictures(const std::string& input, std::vector<fs::path> paths) {
    std::sort(paths.begin(), paths.end());
    if (paths.empty()) throw Failure(input + ": no pictures there");
    return std::make_unique<Pictures>(std::move(paths));
}

std::vector<fs::path> PicturesIn(const fs::path& folder) {
    const SilencedStderr silence;
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (entry.is_regular_file() && cv::haveImageReader(entry.path().string())) paths.push_back(entry.path());
    }
    return paths;
}

std::vector<fs::path> Matching(const std::string& pattern) {
    glob_t matches{};
    std::vector<fs::path> paths;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread changes the environment
    if (glob(pattern.c_str(), GLOB_NOSORT, nullptr, &matches) == 0) {
        paths.assign(matches.gl_pathv, matches.gl_pathv + matches.gl_pathc);
    }
    globfree(&matches);
    return paths;
}

}  // namespace

std::unique_ptr<FrameSource> OpenFrames(const std::string& input) {
    std::error_code ignored;
    if (fs::is_directory(input, ignored)) return SortedPictures(input, PicturesIn(input));
    if (!fs::exists(input, ignored)) {
        if (const std::optional<int> camera = ReadIndex(input)) return std::make_unique<VideoReader>(*camera);
        if (input.find_first_of("*?[") != std::string::npos) return SortedPictures(input, Matching(input));
    }
    return std::make_unique<VideoReader>(fs::path(input));
}

}  // namespace quarry::command
