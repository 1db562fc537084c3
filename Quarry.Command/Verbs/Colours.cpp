#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Console.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "PixelRegions.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(Counts how often each hue and saturation (50 x 60 of them; brightness does not count) occurs
in an area of both pictures and compares the counts, with --method:
  correlation              1 alike, 0 nothing in common, -1 opposite
  chi-square               0 alike, grows with the difference, weighed by the first
  intersection             pixels in common: alike gives the number of pixels of the area
  bhattacharyya            0 alike, 1 nothing in common
  alternative-chi-square   0 alike, grows with the difference, weighed by both
  kullback-leibler         0 alike, grows with the difference

--area is in shares of the width and height of the first picture: X,Y is its upper left
corner. The same pixels are taken from the second one, which may be of another size but must
be large enough.

Example:
  quarry colours monday.jpg friday.jpg --area 0.4,0.2,0.1,0.3 --method bhattacharyya)";

const std::map<std::string, HistogramMeasure> kMethods = {
    {"correlation", HistogramMeasure::Correlation},
    {"chi-square", HistogramMeasure::ChiSquare},
    {"intersection", HistogramMeasure::Intersection},
    {"bhattacharyya", HistogramMeasure::Bhattacharyya},
    {"alternative-chi-square", HistogramMeasure::AlternativeChiSquare},
    {"kullback-leibler", HistogramMeasure::KullbackLeibler},
};

struct Options {
    std::string first;
    std::string second;
    RelRect area = kWholeFrame;
    std::string areaText = "0,0,1,1";
    std::string method = "correlation";
    bool json = false;
};

/// The area in pixels.
/// @throws CLI::ValidationError  it is empty or not within the first picture
/// @throws Failure               it is not within the second picture
cv::Rect CheckedArea(const Options& options, const cv::Size& first, const cv::Size& second) {
    const cv::Rect pixels = PixelsOf(options.area, first);
    const auto liesIn = [&](const cv::Size& size) { return (pixels & cv::Rect({0, 0}, size)) == pixels; };
    if (pixels.empty() || !liesIn(first)) {
        throw CLI::ValidationError(
            "--area", options.areaText + (pixels.empty() ? " covers no whole pixel of " : " reaches beyond ") +
                          fmt::format("{} ({} x {} pixels)", options.first, first.width, first.height));
    }
    if (!liesIn(second)) {
        throw Failure(fmt::format("{}: is {} x {} pixels; the area needs at least {} x {}", options.second,
                                  second.width, second.height, pixels.br().x, pixels.br().y));
    }
    return pixels;
}

void Write(const Options& options, const cv::Rect& area, double similarity, double milliseconds) {
    if (options.json) {
        std::cout << JsonLine({{"first", options.first},
                               {"second", options.second},
                               {"area", {area.x, area.y, area.width, area.height}},
                               {"method", options.method},
                               {"value", similarity},
                               {"milliseconds", milliseconds}});
        return;
    }
    std::cout << fmt::format("{}  {:.6f}\n", options.method, similarity);
}

int Run(const Options& options) {
    const cv::Mat first = ReadPicture(options.first);
    const cv::Mat second = ReadPicture(options.second);
    const cv::Rect area = CheckedArea(options, first.size(), second.size());
    ColorComparison compare({kMethods.at(options.method)});
    const Stopwatch watch;
    const double similarity = compare(ViewOf(first), ViewOf(second), options.area);
    Write(options, area, similarity, watch.Milliseconds());
    return kExitFine;
}

void SetArea(Options& options, const std::string& text) {
    const auto [x, y, width, height] = FourShares("--area", text, "X,Y,WIDTH,HEIGHT");
    options.area = {x, y, width, height};
    options.areaText = text;
}

}  // namespace

Verb AddColours(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("colours", "How alike the colours of an area are in two pictures");
    command->footer(kFooter);
    command->add_option("FIRST", options->first, "Picture to compare")->required();
    command->add_option("SECOND", options->second, "Picture to compare it with")->required();
    command
        ->add_option_function<std::string>(
            "--area", [options](const std::string& text) { SetArea(*options, text); },
            "The area, in shares of the first picture from 0 to 1; all of it when not given")
        ->type_name("X,Y,WIDTH,HEIGHT");
    command->add_option("--method", options->method, "How to compare")
        ->check(CLI::IsMember(kMethods))
        ->capture_default_str();
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
