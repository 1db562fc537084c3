#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <string>

#include "Annotation.h"
#include "JsonOutput.h"
#include "Options.h"
#include "PicturesVerb.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(A pixel is flame when its colour is: bright orange, yellow or nearly white. Of all these pixels
the largest connected region is kept, without its holes, and grown by up to 10 pixels. Per
picture it gives the share of the pixels that are in it and the rectangle around it,
X,Y,WIDTH,HEIGHT in pixels. Colour alone decides: an orange or a pale wall counts too.

Example:
  quarry fire stove.jpg --out stove-outlined.jpg)";

class Fire : public FrameAnalyser {
public:
    void Analyse(const VideoFrame& frame) override {
        last = frame.pixels;
        const Stopwatch watch;
        const FirePixels::Flames flames = find(ViewOf(last));
        milliseconds = watch.Milliseconds();
        region = CloneOf(flames);
        share = ShareOf(region);
        bounds = cv::boundingRect(region);
    }

    std::string TableHead() const override { return "   flame %        ms  rectangle"; }

    std::string TableRow() const override {
        std::string row = fmt::format("{:10.3f}{:10.1f}", share * 100, milliseconds);
        if (bounds.empty()) return row;
        return row + fmt::format("  {},{},{},{}", bounds.x, bounds.y, bounds.width, bounds.height);
    }

    nlohmann::ordered_json Fields() const override {
        const nlohmann::ordered_json rectangle = bounds.empty() ? nullptr : JsonOf(bounds);
        return {{"flame", share}, {"rectangle", rectangle}, {"milliseconds", milliseconds}};
    }

    cv::Mat Annotated() const override { return OutlineRegion(last, region); }

private:
    FirePixels find;
    cv::Mat last;
    cv::Mat region;
    double share = 0;  ///< of the picture's pixels, from 0 to 1
    cv::Rect bounds;   ///< around the region; empty when there is none
    double milliseconds = 0;
};

}  // namespace

Verb AddFire(CLI::App& commandLine) {
    const FrameVerb overFrames = {"fire", "Finds the region of pictures that has the colours of a flame",
                                  [](CLI::App& /*command*/) { return [] { return std::make_unique<Fire>(); }; }};
    const auto options = std::make_shared<PicturesOptions>();
    CLI::App* const command = AddCommand(commandLine, overFrames, kFooter);
    AddPicturesOptions(*command, *options, "Pictures to search", "the region outlined");
    return {command,
            [options] {
                CheckAnnotated(*options);
                Fire analyser;
                return RunOverPictures(*options, "fire", analyser);
            },
            overFrames};
}

}  // namespace quarry::command
