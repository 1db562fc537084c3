#include <fmt/format.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include "Console.h"
#include "JsonInput.h"
#include "JsonLine.h"
#include "Options.h"
#include "Statistics.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(Each file holds a JSON array of points, [[x, y], [x, y], ...], in fractions of the width and
height of the frame: the contour of the same object, first as it was and then as it is.

The rate is the distance of the two shapes (of their moments; place, size and rotation do not
count) per second: 0 the same shape, some hundredths for one that hardly changes. --method
says how moments are compared: by their inverse logarithms (1), by their logarithms (2) or by
the largest relative difference of their logarithms (3). Rates of different methods cannot be
compared. There is none (null in JSON) when only one of the shapes has an area.

Example:
  quarry shape-rate before.json now.json --interval 100 --size 768x576)";

struct Options {
    std::string before;
    std::string after;
    double interval = 0;  ///< milliseconds
    cv::Size size;
    int32_t method = 1;
    bool json = false;
};

int Run(const Options& options) {
    const Polygon before = ReadPolygon(options.before);
    const Polygon after = ReadPolygon(options.after);
    const double rate = ContourRate({static_cast<ShapeMeasure>(options.method)})(
        after, before, {options.size.width, options.size.height, options.interval, 0});
    const bool comparable = IsOfComparableShapes(rate);
    if (options.json) {
        const nlohmann::ordered_json shown = comparable ? nlohmann::ordered_json(rate) : nullptr;
        std::cout << JsonLine({{"before", options.before}, {"after", options.after}, {"rate", shown}});
    } else if (!comparable) {
        std::cout << "rate  none: only one of the shapes has an area\n";
    } else {
        std::cout << fmt::format("rate  {:.6f} per second\n", rate);
    }
    return kExitFine;
}

}  // namespace

Verb AddShapeRate(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("shape-rate", "How fast an object changes its shape, from two contours of it");
    command->footer(kFooter);
    command->add_option("BEFORE", options->before, "JSON file with the earlier contour")->required();
    command->add_option("AFTER", options->after, "JSON file with the later contour")->required();
    command->add_option("--interval", options->interval, "Milliseconds between the two")
        ->check(Within(0.001, 86'400'000))
        ->required();
    command
        ->add_option_function<std::string>(
            "--size",
            [options](const std::string& text) { options->size = WidthAndHeight("--size", text, "WIDTHxHEIGHT"); },
            "Size of the frame in pixels")
        ->type_name("WIDTHxHEIGHT")
        ->required();
    command->add_option("--method", options->method, "How shapes are compared")
        ->check(CLI::IsMember({"1", "2", "3"}))
        ->capture_default_str();
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
