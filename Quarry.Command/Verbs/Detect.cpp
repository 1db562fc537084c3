#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>

#include "Annotation.h"
#include "Detection.h"
#include "JsonOutput.h"
#include "Options.h"
#include "PicturesVerb.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(The model says what is looked for: a cascade of boosted features as OpenCV's training writes
it. Models for faces, eyes and whole bodies come with OpenCV; on Debian they are in the
package opencv-data, under /usr/share/opencv4/haarcascades.

Per picture it gives how many were found and, for each one, X,Y,WIDTH,HEIGHT in pixels of the
picture. Objects that reach beyond --area are not found.

Mode 0 is the surest: six neighbouring hits make a detection. Mode 1 is content with two, so
it finds the most and is often wrong. Mode 2 wants three; with a model in the old
format it finds the largest object only.

Example:
  quarry detect team.jpg --cascade haarcascade_frontalface_alt.xml --out team-faces.jpg)";

struct Options {
    std::string model;
    int minSize = 0;  ///< smallest side of an object, pixels; 0 is no limit
    int maxSize = 0;  ///< largest side of an object, pixels; 0 is no limit
    uint32_t mode = 0;
    RelRect area = kWholeFrame;
};

double LimitOf(int side) {
    constexpr double kNoLimit = -1;
    return side > 0 ? side : kNoLimit;
}

class Detect : public FrameAnalyser {
public:
    explicit Detect(const Options& options)
        : area(options.area),
          detector(OpenDetector({options.model, LimitOf(options.minSize), LimitOf(options.maxSize),
                                 static_cast<CascadeMode>(options.mode)})) {}

    void Analyse(const VideoFrame& frame) override {
        last = frame.pixels;
        result = Search(detector, last, area);
    }

    std::string TableHead() const override { return "   found        ms  detections"; }

    std::string TableRow() const override {
        std::string row = fmt::format("{:8}{:10.1f}", result.found.size(), result.milliseconds);
        for (const cv::Rect& rect : result.found) {
            row += fmt::format("  {},{},{},{}", rect.x, rect.y, rect.width, rect.height);
        }
        return row;
    }

    nlohmann::ordered_json Fields() const override {
        nlohmann::ordered_json rectangles = nlohmann::ordered_json::array();
        for (const cv::Rect& rect : result.found) rectangles.push_back(JsonOf(rect));
        std::sort(rectangles.begin(), rectangles.end());  // OpenCV's threads find them in no fixed order
        return {{"detections", rectangles}, {"milliseconds", result.milliseconds}};
    }

    cv::Mat Annotated() const override { return MarkFound(last, result.found); }

private:
    RelRect area;
    CascadeDetector detector;
    cv::Mat last;
    DetectionResult result{};
};

std::unique_ptr<FrameAnalyser> MakeAnalyser(const Options& options) {
    if (options.maxSize > 0 && options.maxSize < options.minSize) {
        throw CLI::ValidationError("--max-size", fmt::format("must be 0 or at least --min-size, {}, not {}",
                                                             options.minSize, options.maxSize));
    }
    return std::make_unique<Detect>(options);
}

FrameAnalyserFactory AddOwnOptions(CLI::App& command, const std::shared_ptr<Options>& options) {
    command.add_option("--cascade", options->model, "The model, an XML file")->type_name(kFileType)->required();
    command
        .add_option_function<std::string>(
            "--area", [options](const std::string& text) { options->area = AreaOf("--area", text); },
            "Search this part of the picture, in fractions of its width and height (default: all of it)")
        ->type_name("X,Y,WIDTH,HEIGHT");
    command.add_option("--min-size", options->minSize, "Smallest side of an object in pixels; 0 is no limit")
        ->check(Within(0, 100'000))
        ->capture_default_str();
    command.add_option("--max-size", options->maxSize, "Largest side of an object in pixels; 0 is no limit")
        ->check(Within(0, 100'000))
        ->capture_default_str();
    command.add_option("--mode", options->mode, "0: the surest; 1: finds the most; 2: between them")
        ->check(CLI::IsMember({"0", "1", "2"}))
        ->capture_default_str();
    return [options] { return MakeAnalyser(*options); };
}

}  // namespace

Verb AddDetect(CLI::App& commandLine) {
    const FrameVerb overFrames = {
        "detect", "Finds objects of one kind in pictures, e.g. faces: of the kind that a model was trained for",
        [](CLI::App& command) { return AddOwnOptions(command, std::make_shared<Options>()); }};
    const auto pictures = std::make_shared<PicturesOptions>();
    const auto options = std::make_shared<Options>();
    CLI::App* const command = AddCommand(commandLine, overFrames, kFooter);
    AddPicturesOptions(*command, *pictures, "Pictures to search", "rectangles around what was found");
    const FrameAnalyserFactory makeAnalyser = AddOwnOptions(*command, options);
    return {command,
            [pictures, options, makeAnalyser] {
                CheckAnnotated(*pictures);
                CheckIsNotAnInput("--out", pictures->annotated, {options->model});
                return RunOverPictures(*pictures, "detect", *makeAnalyser());
            },
            overFrames};
}

}  // namespace quarry::command
