#include "Verbs/OverVideo.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <system_error>

#include "Console.h"
#include "FrameSource.h"
#include "Interruption.h"
#include "Media.h"
#include "Progress.h"
#include "Ticks.h"
#include "Verbs/Options.h"

namespace quarry::host {
namespace {

using Json = nlohmann::ordered_json;

Json ObjectOf(const VideoFrame& frame, const FrameByFrame& verb) {
    Json object = {{"frame", frame.index}, {"timestamp", frame.timestamp}};
    object.update(verb.Fields());
    return object;
}

/// A value as a cell (RFC 4180): text as it is, nothing for null, lists as JSON.
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

/// The lines of a frame on the standard output.
void WriteLines(const VideoOptions& options, const VideoFrame& frame, const FrameByFrame& verb, bool isFirst) {
    if (options.json) {
        std::cout << JsonLine(ObjectOf(frame, verb));
    } else if (options.csv) {
        const Json object = ObjectOf(frame, verb);
        if (isFirst) std::cout << CsvLine(object, true);
        std::cout << CsvLine(object, false);
    } else {
        if (isFirst) std::cout << "frame    time s" << verb.TableHead() << '\n';
        std::cout << Format("%5d  %8.3f", frame.index, frame.seconds) << verb.TableRow() << '\n';
    }
}

/// How many frames will be taken, 0 when it is not known.
int Expected(const VideoOptions& options, int declared) {
    const int span = std::min(declared, options.end) - options.first;
    return span > 0 ? (span + options.every - 1) / options.every : 0;
}

/// The frames that the options ask for, one after the other.
class Selection {
public:
    explicit Selection(const VideoOptions& options_) : options(options_), source(OpenFrames(options_.video)) {}

    bool Next(VideoFrame& frame) {
        const int wanted = index < 0 ? options.first : index + options.every;
        while (++index < wanted) {
            if (!source->Skip()) return false;
        }
        if (index >= options.end || !source->Read(pixels)) return false;
        const double rate = source->framesPerSecond();
        frame = {index, index / rate, TimestampOf(index, rate), pixels};
        return true;
    }

    double framesPerSecond() const { return source->framesPerSecond() / options.every; }
    int expected() const { return Expected(options, source->frameCount()); }

private:
    const VideoOptions& options;
    std::unique_ptr<FrameSource> source;
    int index = -1;  ///< of the last frame
    cv::Mat pixels;
};

/// @return the exit code
int Play(const VideoOptions& options, const std::string& label, FrameByFrame& verb) {
    Selection frames(options);
    std::optional<VideoFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated, frames.framesPerSecond());
    Progress progress(label, "frames", frames.expected());
    const Interruption interruption;
    int taken = 0;
    for (VideoFrame frame{}; !interruption.IsRequested() && frames.Next(frame); ++taken) {
        verb.Take(frame);
        if (annotated) annotated->Write(verb.Annotated());
        progress.MakeWay();
        WriteLines(options, frame, verb, taken == 0);
        progress.Advance();
    }
    progress.Clear();
    if (taken == 0 && interruption.IsRequested()) return kExitInterrupted;
    if (taken == 0) throw Failure(options.video + ": holds no frames" + (options.first > 0 ? " there" : ""));
    if (annotated) annotated->Finish();
    if (!options.json && !options.csv) std::cout << taken << " frames, " << verb.Summary() << '\n';
    return interruption.IsRequested() ? kExitInterrupted : kExitFine;
}

/// A frame's index, or nothing where none is given.
std::optional<int> IndexOf(const std::string& text, int otherwise) {
    int index = otherwise;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    if (text.empty()) return otherwise;
    return error == std::errc() && end == text.data() + text.size() && index >= 0 ? std::optional(index) : std::nullopt;
}

void SetRange(VideoOptions& options, const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::optional<int> first = IndexOf(text.substr(0, colon), 0);
    const std::optional<int> end =
        colon == std::string::npos ? std::nullopt : IndexOf(text.substr(colon + 1), std::numeric_limits<int>::max());
    if (!first || !end || *first >= *end) {
        throw CLI::ValidationError("--frames", "must be A:B, A: or :B with indexes from 0 and A below B, not " + text);
    }
    options.first = *first;
    options.end = *end;
}

}  // namespace

void AddVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown) {
    command
        .add_option("VIDEO", options.video,
                    "Video to read; or a folder of pictures, a pattern of their names, or a camera's number")
        ->required();
    command.add_option("--out,--annotate", options.annotated, "Write the video with " + shown + " here")
        ->check(EndsIn({".avi"}));
    CLI::Option* const json =
        command.add_flag("--json", options.json, "Write one JSON object per frame and line instead of a table");
    command.add_flag("--csv", options.csv, "Write comma-separated values with a head line instead of a table")
        ->excludes(json);
    command
        .add_option_function<std::string>(
            "--frames", [&options](const std::string& text) { SetRange(options, text); },
            "Take the frames from index A up to, not including, B")
        ->type_name("A:B");
    command.add_option("--every", options.every, "Take every N-th of them")
        ->type_name("N")
        ->check(Within(1, 1'000'000));
    command.add_option("--threads", options.threads, "Threads that OpenCV may use (default: one per core)")
        ->type_name("N")
        ->check(Within(1, 1024));
}

int RunOverVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb) {
    CheckIsNotAnInput("--out", options.annotated, {options.video});
    if (options.threads > 0) cv::setNumThreads(options.threads);
    try {
        return Play(options, label, verb);
    } catch (const Failure&) {
        throw;
    } catch (const CLI::Error&) {
        throw;
    } catch (...) {
        throw Failure(options.video + ": " + CurrentReason());
    }
}

}  // namespace quarry::host
