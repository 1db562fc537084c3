#include "Scanning.h"

#include <Quarry/Version.h>

#include <CLI/CLI.hpp>
#include <new>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "Console.h"
#include "Fingerprint.h"
#include "JsonLine.h"
#include "VideoLines.h"

namespace quarry::command {
namespace {

namespace fs = std::filesystem;

/// A video cannot be played to its end, now and whenever it is tried again.
class BadVideo : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Calls a function and turns its errors, which are all the fault of the video, into BadVideo.
template <typename Step>
auto OfTheVideo(Step step) try {
    return step();
} catch (const Failure& refused) {
    throw BadVideo(refused.what());
} catch (const CLI::Error& refused) {
    throw BadVideo(refused.what());
} catch (const std::invalid_argument& refused) {
    throw BadVideo(refused.what());
} catch (const cv::Exception& refused) {
    if (refused.code == cv::Error::StsNoMem) throw;
    throw BadVideo(refused.err);
}

/// The message without the path at its beginning, because the path differs between machines.
std::string Reason(const std::string& message, const fs::path& path) {
    const std::string begin = path.string() + ": ";
    return message.rfind(begin, 0) == 0 ? message.substr(begin.size()) : message;
}

std::string LineOf(const VideoFrame& frame, const FrameAnalyser& analyser) {
    nlohmann::ordered_json object = ObjectOf(frame, analyser);
    object.erase("milliseconds");  // all other values are the same in each run
    return JsonLine(object);
}

struct Played {
    std::string error;  ///< empty when there was none
    bool isWhole;       ///< as many frames were read as the video declares
};

Played Play(const ArchivedVideo& video, const Scanning& scanning, VideoLines& lines) {
    const std::unique_ptr<FrameAnalyser> analyser = scanning.makeAnalyser();
    try {
        SelectedFrames frames = OfTheVideo([&] { return SelectedFrames(video.path.string(), scanning.frames); });
        VideoFrame frame{};
        const auto take = [&] {
            if (!frames.Next(frame)) return false;
            analyser->Analyse(frame);
            return true;
        };
        int taken = 0;
        for (; OfTheVideo(take); ++taken) lines.Write(LineOf(frame, *analyser));
        if (taken > 0) return {"", taken >= frames.expected()};
        throw BadVideo(scanning.frames.first > 0 ? "holds no frames there" : "holds no frames");
    } catch (const BadVideo& bad) {
        return {Reason(bad.what(), video.path), false};
    }
}

std::string HeadOf(const ArchivedVideo& video, const Scanning& scanning, const Fingerprint& fingerprint) {
    return JsonLine({{"quarry", QUARRY_VERSION},
                     {"operation", scanning.operation},
                     {"options", scanning.options},
                     {"video", video.name},
                     {"bytes", fingerprint.bytes},
                     {"sha256", fingerprint.sha256}});
}

/// The time of the last change, or the lowest possible time when it cannot be read.
fs::file_time_type TimeOf(const fs::path& path) {
    std::error_code ignored;
    return fs::last_write_time(path, ignored);
}

Scanned TryToScan(const ArchivedVideo& video, const Scanning& scanning) {
    const fs::file_time_type changed = TimeOf(video.path);
    const Fingerprint fingerprint = FingerprintOf(video.path);
    const std::string head = HeadOf(video, scanning, fingerprint);
    const fs::path output = scanning.out / video.output;
    const std::optional<FinishedLines> finished = ReadFinished(output);
    if (finished && finished->head == head) {
        return {finished->error.empty() ? Outcome::Skipped : Outcome::Bad, finished->error};
    }
    fs::create_directories(output.parent_path());
    VideoLines lines(output, head);
    const Played played = Play(video, scanning, lines);
    // A decoder reports a video that ends early and an error in reading it in the same way, so that only the same
    // contents before and after show that the video is what was analysed.
    const bool isCertain = played.isWhole && TimeOf(video.path) == changed;
    if (!isCertain && !(FingerprintOf(video.path) == fingerprint)) throw Failure("was changed while it was read");
    lines.Finish(played.error);
    return {played.error.empty() ? Outcome::Done : Outcome::Bad, played.error};
}

}  // namespace

Outcome CurrentOutcome() {
    try {
        throw;
    } catch (const Failure&) {
        return Outcome::Failed;
    } catch (const std::system_error&) {
        return Outcome::Failed;
    } catch (const std::bad_alloc&) {
        return Outcome::Failed;
    } catch (const cv::Exception& refused) {
        return refused.code == cv::Error::StsNoMem ? Outcome::Failed : Outcome::Bug;
    } catch (...) {
        return Outcome::Bug;
    }
}

Scanned Scan(const ArchivedVideo& video, const Scanning& scanning) try {
    return TryToScan(video, scanning);
} catch (...) {
    return {CurrentOutcome(), Reason(CurrentReason(), video.path)};
}

}  // namespace quarry::command
