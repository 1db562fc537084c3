#include <iostream>
#include <memory>
#include <string>

#include "Console.h"
#include "JsonInput.h"
#include "JsonLine.h"
#include "Options.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(Each file holds a JSON array of points, [[x, y], [x, y], ...], both in the same coordinates:
pixels or fractions of the frame. The answer is
  inside    all points of the contour are in the polygon
  outside   none of them is
  crossing  some are and some are not
Points on the polygon's border count for neither side, but if the contour's first one is on
it, the answer is inside. Only points are looked at: a contour of few points may cross the
polygon between them.

Example:
  quarry inside zone.json person.json)";

struct Options {
    std::string polygon;
    std::string contour;
    bool json = false;
};

const char* NameOf(ContourPosition position) {
    switch (position) {
        case ContourPosition::Outside:
            return "outside";
        case ContourPosition::Crossing:
            return "crossing";
        case ContourPosition::Inside:
            return "inside";
    }
    return "unknown";
}

int Run(const Options& options) {
    const Polygon polygon = ReadPolygon(options.polygon);
    const Polygon contour = ReadPolygon(options.contour);
    const char* const position = NameOf(ContourIntersection()(polygon, contour));
    if (options.json) {
        std::cout << JsonLine({{"polygon", options.polygon}, {"contour", options.contour}, {"position", position}});
    } else {
        std::cout << position << '\n';
    }
    return kExitFine;
}

}  // namespace

Verb AddInside(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("inside", "Whether a contour is inside a polygon, outside of it or crosses it");
    command->footer(kFooter);
    command->add_option("POLYGON", options->polygon, "JSON file with the polygon")->required();
    command->add_option("CONTOUR", options->contour, "JSON file with the contour to place")->required();
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
