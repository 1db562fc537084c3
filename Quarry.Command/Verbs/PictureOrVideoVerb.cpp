#include "PictureOrVideoVerb.h"

#include <Quarry/HostOpenCV.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "Console.h"
#include "Foreground.h"
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

int RunOverPicture(const VideoOptions& options, FrameByFrame& verb) {
    const cv::Mat picture = ReadPicture(options.video);
    std::optional<PictureFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated);
    verb.Take({0, 0, 0, picture});
    if (annotated) annotated->Write(verb.Annotated());
    if (options.json) {
        nlohmann::ordered_json object = {{"file", options.video}};
        object.update(verb.Fields());
        std::cout << JsonLine(object);
    } else {
        std::cout << verb.TableHead() << '\n' << verb.TableRow() << '\n';
    }
    return kExitFine;
}

}  // namespace

cv::Mat Shown::Take(const VideoFrame& frame) {
    if (frame.timestamp == 0) return frame.pixels;
    model.Update(ViewOf(frame.pixels, frame.timestamp));
    return OnBlack(frame.pixels, MatOf(model.Result().foreground()));
}

std::string Shown::Place(const VideoFrame& frame) {
    return frame.timestamp == 0 ? "" : Format("frame %d   %.2f s   ", frame.index, frame.seconds);
}

void AddPictureOrVideoOptions(CLI::App& command, VideoOptions& options, const std::string& shown) {
    command.add_option("INPUT", options.video, "Picture or video to read, or a folder of pictures")->required();
    command
        .add_option("--out", options.annotated,
                    "Write it with " + shown + " here: a picture as .png or .jpg, a video as .avi")
        ->check(EndsIn({".png", ".jpg", ".avi"}));
    command.add_flag("--json", options.json, "Write one JSON object per frame and line instead of a table");
}

int RunOverPictureOrVideo(const VideoOptions& options, const std::string& label, FrameByFrame& verb) {
    const bool still = IsPicture(options.video);
    CheckEnding(options.annotated, still ? kPictureEndings : kVideoEndings);
    CheckIsNotAnInput("--out", options.annotated, {options.video});
    return still ? RunOverPicture(options, verb) : RunOverVideo(options, label, verb);
}

Verb AddPictureOrVideoVerb(CLI::App& commandLine, const FrameOperation& operation, const std::string& footer,
                           const std::string& shown) {
    const auto options = std::make_shared<VideoOptions>();
    CLI::App* const command = AddCommand(commandLine, operation, footer);
    AddPictureOrVideoOptions(*command, *options, shown);
    const Beginning begin = operation.addOptions(*command);
    return {command,
            [options, begin, label = operation.name] { return RunOverPictureOrVideo(*options, label, *begin()); }};
}

}  // namespace quarry::command
