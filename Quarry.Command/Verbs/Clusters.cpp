#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Foreground.h"
#include "JsonOutput.h"
#include "Options.h"
#include "OutlinePicture.h"
#include "PictureOrVideoVerb.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(A cluster is a connected region that is not black. In a picture everything counts that is not
black. In a video what moves counts: a background model is learnt from it, as by the verb
background, and the rest of each frame is blackened. Regions smaller than the share --min-area
of the frame are left out. `area %` is the area of all clusters. With --json each cluster has
  centre     its centre of mass, [x, y] in fractions of the frame's width and height; null
             when it has no area, such as a line
  area       the share of the frame's area that its contour encloses
  perimeter  the length of its contour in widths of the frame
  points     those of its contour, each [x, y] like the centre

Examples:
  quarry clusters street.avi --out street-clusters.avi
  quarry clusters mask.png --min-area 0.01 --json)";

struct Options {
    float minArea = kUsualClusters.minContourAreaRate;
    bool everyPixel = false;
};

nlohmann::ordered_json ObjectOf(const Cluster& cluster) {
    nlohmann::ordered_json object = {{"centre", nullptr},
                                     {"area", cluster.Contour->Area},
                                     {"perimeter", cluster.Contour->Perimeter},
                                     {"points", JsonOf(quarry::PointsOf(*cluster.Contour))}};
    if (HasCentre(cluster)) object["centre"] = {cluster.CenterX, cluster.CenterY};
    return object;
}

class Clusters : public FrameAnalyser {
public:
    explicit Clusters(const Options& options)
        : find({options.everyPixel ? 1.0F : kUsualClusters.outlinePrecision, options.minArea}) {}

    void Analyse(const VideoFrame& frame) override {
        last = frame;
        const cv::Mat redFirst = RedFirst(foreground.Extract(frame));
        const Stopwatch watch;
        clusters = find(ViewOf(redFirst));
        milliseconds.push_back(watch.Milliseconds());
        inAll += clusters->size();
        area = 0;
        for (const Cluster& cluster : *clusters) area += static_cast<double>(cluster.Contour->Area);
    }

    std::string TableHead() const override { return "  clusters    area %        ms"; }

    std::string TableRow() const override {
        return fmt::format("  {:8}  {:8.3f}  {:8.2f}", clusters->size(), area * 100, milliseconds.back());
    }

    nlohmann::ordered_json Fields() const override {
        nlohmann::ordered_json objects = nlohmann::ordered_json::array();
        for (const Cluster& cluster : *clusters) objects.push_back(ObjectOf(cluster));
        return {{"clusters", objects}, {"milliseconds", milliseconds.back()}};
    }

    cv::Mat Annotated() const override {
        return WithCaption(
            MarkClusters(last.pixels, *clusters),
            CaptionStart(last) + fmt::format("{} clusters   area {:.2f} %", clusters->size(), area * 100));
    }

    std::string Summary() const override {
        return fmt::format("{:.2f} clusters on average, {:.2f} ms per frame (median)",
                           static_cast<double>(inAll) / static_cast<double>(milliseconds.size()),
                           Quantile(milliseconds, 0.5));
    }

private:
    ForegroundExtractor foreground;
    ContourClusters find;
    VideoFrame last{};
    std::optional<ContourClusters::Clusters> clusters;
    double area = 0;  ///< of all clusters together, as a share of the frame's
    std::size_t inAll = 0;
    std::vector<double> milliseconds;  ///< without the background model
};

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto options = std::make_shared<Options>();
    command.add_option("--min-area", options->minArea, "Share of the frame that a thing must have to count")
        ->check(Within(0, 1))
        ->capture_default_str();
    command.add_flag("--every-pixel", options->everyPixel,
                     "Keep every pixel of the borders, not only those that shape them");
    return [options] { return std::make_unique<Clusters>(*options); };
}

}  // namespace

Verb AddClusters(CLI::App& commandLine) {
    return AddPictureOrVideoVerb(
        commandLine,
        {"clusters", "The things that move in a video, or that are not black in a picture: contours and centres",
         AddOwnOptions},
        kFooter, "contours and centres drawn");
}

}  // namespace quarry::command
