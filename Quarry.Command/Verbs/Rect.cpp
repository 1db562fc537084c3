#include <Quarry/HostOpenCV.hpp>
#include <memory>
#include <string>

#include "Options.h"
#include "PictureTransformVerb.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(--center and --size are in pixels: the middle of the rectangle in the picture, and how large
it is, there as in the result. --angle turns the rectangle clockwise in the picture, so that
the result shows what lies in it upright. Where the rectangle leaves the picture, the result
is black. A centre left of or above the picture is written --center=-20,40.

Pixels are interpolated between their neighbours; with --nearest each is copied from the
nearest one, so that no colour appears that was not there.

Example:
  quarry rect board.jpg --center 320,200 --size 180x90 --angle 30 --out part.png)";

struct Options {
    PictureTransformOptions files;
    TurnedRect rect;
    bool nearest = false;
};

void SetCentre(TurnedRect& rect, const std::string& text) {
    const auto [x, y] = TwoWholeNumbers("--center", text, "X,Y");
    rect.centerX = x;
    rect.centerY = y;
}

void SetSize(TurnedRect& rect, const std::string& text) {
    const cv::Size size = WidthAndHeight("--size", text, "WIDTHxHEIGHT");
    rect.width = size.width;
    rect.height = size.height;
}

int Run(const Options& options) {
    const Interpolation interpolation = options.nearest ? Interpolation::Nearest : Interpolation::Bilinear;
    return TransformPicture(options.files, [&](const cv::Mat& picture) {
        return CloneOf(RectExtractor({interpolation})(ViewOf(picture), options.rect));
    });
}

}  // namespace

Verb AddRect(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand("rect", "Cuts a turned rectangle out of a picture");
    command->footer(kFooter);
    AddPictureTransformOptions(*command, options->files, "the rectangle, upright,");
    command
        ->add_option_function<std::string>(
            "--center", [options](const std::string& text) { SetCentre(options->rect, text); },
            "The middle of the rectangle, in pixels")
        ->type_name("X,Y")
        ->required();
    command
        ->add_option_function<std::string>(
            "--size", [options](const std::string& text) { SetSize(options->rect, text); }, "Its size, in pixels")
        ->type_name("WIDTHxHEIGHT")
        ->required();
    command->add_option("--angle", options->rect.degrees, "How far it is turned clockwise, in degrees")
        ->check(Within(-360, 360))
        ->capture_default_str();
    command->add_flag("--nearest", options->nearest, "Copy the nearest pixels instead of interpolating");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
