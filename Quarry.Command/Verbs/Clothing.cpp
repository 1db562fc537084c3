#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Body.h"
#include "ClothingPicture.h"
#include "Console.h"
#include "JsonInput.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(The JSON file holds the 17 points of one body as an array of [x, y] pairs, in shares of the
picture's width and height (0 left and top, 1 right and bottom; from -1 to 2, as a body may
reach beyond the picture). Their order: nose, left and right eye, ears, shoulders, elbows,
wrists, hips, knees, ankles, each time left before right. Shoulders, hips, knees and ankles
count.

Of torso and legs each the two main colours are given, the one with more pixels first: as
#rrggbb and as red, green and blue from 0 to 1. The picture of --out shows the areas that
they were taken from and, in a strip below, the four colours in the same order.

Example:
  quarry clothing street.jpg body.json --out street-colours.png)";

/// Points may lie beyond the picture, by at most its width and height.
constexpr PointLimits kLimits = {-1, 2, kBodyPoints};

struct Options {
    std::string picture;
    std::string points;
    std::string out;  ///< empty when no picture is wanted
    bool json = false;
};

Body ReadBody(const std::string& path) {
    const std::vector<FloatPoint> points = PointsOf(ReadJson(path), path, kLimits);
    Body body{};
    std::copy(points.begin(), points.end(), body.begin());
    return body;
}

nlohmann::ordered_json JsonOf(const RgbColor& first, const RgbColor& second) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const RgbColor& colour : {first, second}) {
        array.push_back(
            {{"colour", HexOf(colour)}, {"red", colour.red}, {"green", colour.green}, {"blue", colour.blue}});
    }
    return array;
}

std::string Line(const char* area, const char* place, const RgbColor& colour) {
    return fmt::format("{:<6}{:<8}{:<8}{:7.3f}{:7.3f}{:7.3f}\n", area, place, HexOf(colour), colour.red, colour.green,
                       colour.blue);
}

void Write(const Options& options, const ClothingColorsResult& colours, double milliseconds) {
    if (options.json) {
        std::cout << JsonLine({{"file", options.picture},
                               {"torso", JsonOf(colours.torso(0), colours.torso(1))},
                               {"legs", JsonOf(colours.legs(0), colours.legs(1))},
                               {"milliseconds", milliseconds}});
        return;
    }
    std::cout << "area  place   colour      red  green   blue\n"
              << Line("torso", "first", colours.torso(0)) << Line("torso", "second", colours.torso(1))
              << Line("legs", "first", colours.legs(0)) << Line("legs", "second", colours.legs(1));
}

int Run(const Options& options) {
    CheckIsNotAnInput("--out", options.out, {options.picture, options.points});
    const Body body = ReadBody(options.points);
    const cv::Mat picture = ReadPicture(options.picture);
    if (!CoverEnough(AreasOf(body, picture.size()), picture.size())) {
        throw Failure(options.points + ": torso or legs cover less than 2 pixels of " + options.picture);
    }
    std::optional<PictureFile> file;
    if (!options.out.empty()) file.emplace(options.out);
    const Stopwatch watch;
    const ClothingColorsResult colours = ClothingColors()(ViewOf(picture), body);
    const double milliseconds = watch.Milliseconds();
    if (file) file->Write(WithSwatches(MarkBody(picture, body), colours));
    Write(options, colours, milliseconds);
    return kExitFine;
}

}  // namespace

Verb AddClothing(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("clothing", "The two main colours of a person's torso and of the legs");
    command->footer(kFooter);
    command->add_option("PICTURE", options->picture, "Picture of the person")->required();
    command->add_option("POINTS", options->points, "JSON file with the 17 points of the body")->required();
    command->add_option("--out", options->out, "Write the picture with areas and colours here")->check(EndsAsPicture());
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
