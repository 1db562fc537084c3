#include "PictureOrVideoVerb.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "Console.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"

namespace quarry::command {
namespace {

const std::vector<std::string> kVideoEndings = {".avi"};
const std::vector<std::string> kPictureEndings = {".png", ".jpg"};

void CheckEnding(const std::string& written, const std::vector<std::string>& endings) {
    if (written.empty()) return;
    const std::string trouble = EndsIn(endings)(written);
    if (!trouble.empty()) throw CLI::ValidationError("--out", trouble);
}

int RunOverPicture(const VideoOptions& options, FrameAnalyser& analyser) {
    const cv::Mat picture = ReadPicture(options.video);
    std::optional<PictureFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated);
    analyser.Analyse({0, 0, 0, picture});
    if (annotated) annotated->Write(analyser.Annotated());
    if (options.json) {
        nlohmann::ordered_json object = {{"file", options.video}};
        object.update(analyser.Fields());
        std::cout << JsonLine(object);
    } else {
        std::cout << analyser.TableHead() << '\n' << analyser.TableRow() << '\n';
    }
    return kExitFine;
}

void AddPictureOrVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown) {
    command.add_option("INPUT", options.video, "Picture or video to read, or a folder of pictures")->required();
    command
        .add_option("--out", options.annotated,
                    "Write it with " + shown + " here: a picture as .png or .jpg, a video as .avi")
        ->check(EndsIn({".png", ".jpg", ".avi"}));
    command.add_flag("--json", options.json, "Write one JSON object per frame and line instead of a table");
}

int RunOverPictureOrVideo(const VideoOptions& options, const std::string& label, FrameAnalyser& analyser) {
    const bool still = IsPicture(options.video);
    CheckEnding(options.annotated, still ? kPictureEndings : kVideoEndings);
    CheckIsNotAnInput("--out", options.annotated, {options.video});
    return still ? RunOverPicture(options, analyser) : RunOverVideo(options, label, analyser);
}

}  // namespace

Verb AddPictureOrVideoVerb(CLI::App& commandLine, const FrameVerb& overFrames, const std::string& footer,
                           const std::string& shown) {
    const auto options = std::make_shared<VideoOptions>();
    CLI::App* const command = AddCommand(commandLine, overFrames, footer);
    AddPictureOrVideoOptions(*command, *options, shown);
    const FrameAnalyserFactory makeAnalyser = overFrames.addOptions(*command);
    return {command,
            [options, makeAnalyser, label = overFrames.name] {
                return RunOverPictureOrVideo(*options, label, *makeAnalyser());
            },
            overFrames};
}

}  // namespace quarry::command
