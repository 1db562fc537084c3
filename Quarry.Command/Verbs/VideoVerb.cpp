#include "VideoVerb.h"

#include <fmt/format.h>

#include <cstddef>
#include <iostream>
#include <memory>
#include <optional>

#include "Console.h"
#include "Interruption.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "Progress.h"

namespace quarry::command {
namespace {

using Json = nlohmann::ordered_json;

/// A value as a cell after RFC 4180. Text stays as it is, null becomes an empty cell, and a list is written as JSON.
std::string CsvCell(const Json& value) {
    if (value.is_null()) return "";
    std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
    for (std::size_t at = 0; (at = text.find('"', at)) != std::string::npos; at += 2) text.insert(at, 1, '"');
    return '"' + text + '"';
}

std::string CsvLine(const Json& object, bool names) {
    std::string line;
    for (const auto& [name, value] : object.items())
        line += (line.empty() ? "" : ",") + CsvCell(names ? Json(name) : value);
    return line + "\n";
}

/// Writes the line of a frame to the standard output, after the head line when it is the first frame.
void WriteLines(const VideoOptions& options, const VideoFrame& frame, const FrameAnalyser& analyser, bool isFirst) {
    if (options.json) {
        std::cout << JsonLine(ObjectOf(frame, analyser));
    } else if (options.csv) {
        const Json object = ObjectOf(frame, analyser);
        if (isFirst) std::cout << CsvLine(object, true);
        std::cout << CsvLine(object, false);
    } else {
        if (isFirst) std::cout << "frame    time s" << analyser.TableHead() << '\n';
        std::cout << fmt::format("{:5}  {:8.3f}", frame.index, frame.seconds) << analyser.TableRow() << '\n';
    }
}

/// @return the exit code
int Play(const VideoOptions& options, const std::string& label, FrameAnalyser& analyser) {
    SelectedFrames frames(options.video, options.frames);
    std::optional<VideoFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated, frames.framesPerSecond());
    Progress progress(label, "frames", frames.expected());
    const Interruption interruption;
    int taken = 0;
    for (VideoFrame frame{}; !interruption.IsRequested() && frames.Next(frame); ++taken) {
        analyser.Analyse(frame);
        if (annotated) annotated->Write(analyser.Annotated());
        progress.MakeWay();
        WriteLines(options, frame, analyser, taken == 0);
        progress.Advance();
    }
    progress.Clear();
    if (taken == 0 && interruption.IsRequested()) return kExitInterrupted;
    if (taken == 0) throw Failure(options.video + ": holds no frames" + (options.frames.first > 0 ? " there" : ""));
    if (annotated) annotated->Finish();
    if (!options.json && !options.csv) std::cout << taken << " frames, " << analyser.Summary() << '\n';
    return interruption.IsRequested() ? kExitInterrupted : kExitFine;
}

}  // namespace

void AddVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown) {
    command
        .add_option("VIDEO", options.video,
                    "Video to read; or a folder of pictures or a pattern of their names in quotes ('shots/*.png'), "
                    "25 to the second, or a camera's number")
        ->required();
    command.add_option("--out,--annotate", options.annotated, "Write the video with " + shown + " here")
        ->check(EndsIn({".avi"}));
    CLI::Option* const json =
        command.add_flag("--json", options.json, "Write one JSON object per frame and line instead of a table");
    command.add_flag("--csv", options.csv, "Write comma-separated values with a head line instead of a table")
        ->excludes(json);
    AddFrameOptions(command, options.frames);
    command.add_option("--threads", options.threads, "Threads that OpenCV may use (default: one per core)")
        ->type_name("N")
        ->check(Within(1, 1024));
}

int RunOverVideo(const VideoOptions& options, const std::string& label, FrameAnalyser& analyser) {
    CheckIsNotAnInput("--out", options.annotated, {options.video});
    if (options.threads > 0) cv::setNumThreads(options.threads);
    try {
        return Play(options, label, analyser);
    } catch (const Failure&) {
        throw;
    } catch (const CLI::Error&) {
        throw;
    } catch (...) {
        throw Failure(options.video + ": " + CurrentReason());
    }
}

Verb AddVideoVerb(CLI::App& commandLine, const FrameVerb& overFrames, const std::string& footer,
                  const std::string& shown) {
    const auto options = std::make_shared<VideoOptions>();
    CLI::App* const command = AddCommand(commandLine, overFrames, footer);
    AddVideoOptions(*command, *options, shown);
    const FrameAnalyserFactory makeAnalyser = overFrames.addOptions(*command);
    return {command,
            [options, makeAnalyser, label = overFrames.name] { return RunOverVideo(*options, label, *makeAnalyser()); },
            overFrames};
}

std::string CaptionStart(const VideoFrame& frame) {
    return frame.timestamp == 0 ? "" : fmt::format("frame {}   {:.2f} s   ", frame.index, frame.seconds);
}

}  // namespace quarry::command
