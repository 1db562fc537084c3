#include <Quarry/HostOpenCV.hpp>
#include <memory>

#include "Options.h"
#include "PictureTransformVerb.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(--angle turns the picture counter-clockwise about its middle, in degrees. It is drawn on a
black canvas that has room for all of its corners; the canvas is then squeezed into the size
of the picture, which the result has too. At 90 degrees a wide picture so fills the result,
but out of proportion.

--scale enlarges (above 1) or shrinks the picture on that canvas; what leaves it is lost.

Example:
  quarry rotate board.jpg --angle 30 --out board-turned.png)";

struct Options {
    PictureTransformOptions files;
    double angle = 0;
    double scale = 1;
};

int Run(const Options& options) {
    return TransformPicture(options.files, [&](const cv::Mat& picture) {
        return CloneOf(RotationTransform({picture.cols, picture.rows})(ViewOf(picture), options.angle, options.scale));
    });
}

}  // namespace

Verb AddRotate(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("rotate", "Turns a picture about its middle, keeping its corners and its size");
    command->footer(kFooter);
    AddPictureTransformOptions(*command, options->files, "the turned picture");
    command->add_option("--angle", options->angle, "How far to turn it counter-clockwise, in degrees")
        ->check(Within(-360, 360))
        ->required();
    command->add_option("--scale", options->scale, "How much to enlarge it")
        ->check(Within(0.01, 100))
        ->capture_default_str();
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
