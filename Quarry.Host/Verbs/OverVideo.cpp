#include "Verbs/OverVideo.h"

#include <iostream>
#include <optional>

#include "Console.h"
#include "Media.h"
#include "Operations/Ticks.h"
#include "Progress.h"
#include "Verbs/Options.h"

namespace quarry::host {
namespace {

std::string TableRow(const VideoFrame& frame, const FrameByFrame& verb) {
    return Format("%5d  %8.3f", frame.index, frame.seconds) + verb.TableRow() + "\n";
}

std::string JsonObject(const VideoFrame& frame, const FrameByFrame& verb) {
    nlohmann::ordered_json object = {{"frame", frame.index}, {"timestamp", frame.timestamp}};
    object.update(verb.Fields());
    return JsonLine(object);
}

void Play(const VideoOptions& options, const std::string& label, FrameByFrame& verb) {
    VideoReader video(options.video);
    const double rate = video.framesPerSecond();
    std::optional<VideoFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated, rate);
    Progress progress(label, "frames", video.frameCount());
    int frames = 0;
    for (cv::Mat pixels; video.Read(pixels); ++frames) {
        const VideoFrame frame = {frames, frames / rate, TimestampOf(frames, rate), pixels};
        verb.Take(frame);
        if (annotated) annotated->Write(verb.Annotated());
        progress.MakeWay();
        if (frames == 0 && !options.json) std::cout << "frame    time s" << verb.TableHead() << '\n';
        std::cout << (options.json ? JsonObject(frame, verb) : TableRow(frame, verb));
        progress.Advance();
    }
    progress.Clear();
    if (frames == 0) throw Failure(options.video + ": holds no frames");
    if (annotated) annotated->Finish();
    if (!options.json) std::cout << frames << " frames, " << verb.Summary() << '\n';
}

}  // namespace

void AddVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown) {
    command.add_option("VIDEO", options.video, "Video to read")->required();
    command.add_option("--out", options.annotated, "Write the video with " + shown + " here")->check(EndsIn({".avi"}));
    command.add_flag("--json", options.json, "Write one JSON object per frame and line instead of a table");
}

int RunOverVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb) {
    CheckIsNotAnInput("--out", options.annotated, {options.video});
    try {
        Play(options, label, verb);
    } catch (const Failure&) {
        throw;
    } catch (const CLI::Error&) {
        throw;
    } catch (...) {
        throw Failure(options.video + ": " + CurrentReason());
    }
    return kExitFine;
}

}  // namespace quarry::host
