#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Console.h"
#include "JsonInput.h"
#include "Options.h"
#include "PictureTransformVerb.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(The JSON file says where five landmarks are in the picture and where they are to be in the
result, in pixels of the one and the other, each in the same order:
  {"source": [[x, y], [x, y], [x, y], [x, y], [x, y]], "destination": [[x, y], ...]}

The picture is turned, scaled alike in both directions and shifted, so that the landmarks
come as near to their destinations as these three can bring them (least squares); it is
never mirrored. Where the result reaches beyond the picture it is black.

Example:
  quarry align face.jpg landmarks.json --size 112x112 --out face-aligned.png)";

constexpr PointLimits kLimits = {std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max(),
                                 SimilarityTransform::kPoints};

struct Options {
    PictureTransformOptions files;
    std::string points;
    std::optional<cv::Size> size;  ///< nothing for the size of the picture
};

std::vector<FloatPoint> LandmarksIn(const nlohmann::json& object, const std::string& key, const std::string& path) {
    const std::string named = path + ": \"" + key + "\"";
    if (!object.contains(key)) throw Failure(named + " is missing; it must be 5 [x, y] pairs");
    std::vector<FloatPoint> points = PointsOf(object.at(key), named, kLimits);
    const bool inOnePlace = std::all_of(points.begin(), points.end(), [&](const FloatPoint& point) {
        return point.X == points[0].X && point.Y == points[0].Y;
    });
    if (inOnePlace) throw Failure(named + ": all points are in one place; at least two must differ");
    return points;
}

int Run(const Options& options) {
    CheckIsNotAnInput("--out", options.files.out, {options.points});
    const nlohmann::json object = ReadJson(options.points);
    if (!object.is_object()) {
        throw Failure(options.points + R"(: not a JSON object with "source" and "destination")");
    }
    const std::vector<FloatPoint> source = LandmarksIn(object, "source", options.points);
    const std::vector<FloatPoint> destination = LandmarksIn(object, "destination", options.points);
    return TransformPicture(options.files, [&](const cv::Mat& picture) {
        const cv::Size size = options.size.value_or(picture.size());
        return CloneOf(SimilarityTransform({size.width, size.height})(ViewOf(picture), source, destination));
    });
}

}  // namespace

Verb AddAlign(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("align", "Turns, scales and shifts a picture so that five landmarks lie in place");
    command->footer(kFooter);
    AddPictureTransformOptions(*command, options->files, "the aligned picture");
    command->add_option("POINTS", options->points, "JSON file with the landmarks")->required();
    command
        ->add_option_function<std::string>(
            "--size",
            [options](const std::string& text) { options->size = WidthAndHeight("--size", text, "WIDTHxHEIGHT"); },
            "Size of the result, in pixels; that of the picture when not given")
        ->type_name("WIDTHxHEIGHT");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
