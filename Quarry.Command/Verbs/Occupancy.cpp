#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <memory>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Foreground.h"
#include "Options.h"
#include "OutlinePicture.h"
#include "PictureOrVideoVerb.h"
#include "Statistics.h"
#include "Stopwatch.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(In a picture everything counts that is not black. In a video what moves counts: a background
model is learnt from it, as by the verb background, and the rest of each frame is blackened.

Things smaller than the share --min-area of the frame are left out, holes in the others are
filled. A cell of the grid is occupied when more than the share --fill of it is covered, so
that with 1 no cell is. `occupied` is the number of such cells; with --json `cells` has the rows
of the grid, 1 for an occupied cell and 0 for a free one. Pixels at the right and lower
edges that do not fill a cell belong to none.

Examples:
  quarry occupancy street.avi --grid 24x18 --out street-grid.avi
  quarry occupancy mask.png --fill 0.5 --json)";

struct Options {
    cv::Size grid{16, 12};  ///< columns and rows
    ContourGrid::Options occupied = kUsualGrid;
};

/// @throws CLI::ValidationError  a cell would be smaller than a pixel
void CheckFits(const cv::Size& grid, const cv::Size& frame) {
    if (grid.width <= frame.width && grid.height <= frame.height) return;
    throw CLI::ValidationError("--grid", fmt::format("{}x{} has more cells than the frame of {} x {} has pixels",
                                                     grid.width, grid.height, frame.width, frame.height));
}

nlohmann::ordered_json RowsOf(const cv::Mat& cells) {
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (int row = 0; row < cells.rows; ++row) {
        rows.push_back(std::vector<int>(cells.ptr<uchar>(row), cells.ptr<uchar>(row) + cells.cols));
    }
    return rows;
}

class Occupancy : public FrameAnalyser {
public:
    explicit Occupancy(const Options& options) : grid(options.grid), find(options.occupied) {}

    void Analyse(const VideoFrame& frame) override {
        if (milliseconds.empty()) CheckFits(grid, frame.pixels.size());
        last = frame;
        const cv::Mat redFirst = RedFirst(foreground.Extract(frame));
        const Stopwatch watch;
        const ContourGrid::Cells found = find(ViewOf(redFirst), {grid.width, grid.height});
        milliseconds.push_back(watch.Milliseconds());
        cells = CloneOf(found);
        occupied = cv::countNonZero(cells);
        inAll += occupied;
    }

    std::string TableHead() const override { return "  occupied   % of cells        ms"; }

    std::string TableRow() const override {
        return fmt::format("  {:8}  {:11.2f}  {:8.2f}", occupied, Percent(occupied), milliseconds.back());
    }

    nlohmann::ordered_json Fields() const override {
        return {{"occupied", occupied}, {"cells", RowsOf(cells)}, {"milliseconds", milliseconds.back()}};
    }

    cv::Mat Annotated() const override {
        return WithCaption(MarkCells(last.pixels, cells),
                           CaptionStart(last) + fmt::format("{} of {} cells occupied", occupied, grid.area()));
    }

    std::string Summary() const override {
        return fmt::format("{:.2f} % of the cells occupied on average, {:.2f} ms per frame (median)",
                           Percent(inAll) / static_cast<double>(milliseconds.size()), Quantile(milliseconds, 0.5));
    }

private:
    double Percent(double count) const { return 100 * count / grid.area(); }

    cv::Size grid;
    ForegroundExtractor foreground;
    ContourGrid find;
    VideoFrame last{};
    cv::Mat cells;
    int occupied = 0;
    double inAll = 0;                  ///< occupied cells of all frames
    std::vector<double> milliseconds;  ///< without the background model
};

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto options = std::make_shared<Options>();
    command
        .add_option_function<std::string>(
            "--grid",
            [options](const std::string& text) { options->grid = WidthAndHeight("--grid", text, "COLUMNSxROWS"); },
            "Columns and rows of the grid")
        ->type_name("COLUMNSxROWS")
        ->default_str(fmt::format("{}x{}", options->grid.width, options->grid.height));
    command
        .add_option("--fill", options->occupied.cellFillRate,
                    "A cell is occupied when more than this share of it is covered")
        ->check(Within(0, 1))
        ->capture_default_str();
    command
        .add_option("--min-area", options->occupied.minContourAreaRate,
                    "Share of the frame that a thing must have to count")
        ->check(Within(0, 1))
        ->capture_default_str();
    return [options] { return std::make_unique<Occupancy>(*options); };
}

}  // namespace

Verb AddOccupancy(CLI::App& commandLine) {
    return AddPictureOrVideoVerb(
        commandLine,
        {"occupancy",
         "Which cells of a grid are occupied by what moves in a video, or by what is not black in a picture",
         AddOwnOptions},
        kFooter, "the grid drawn");
}

}  // namespace quarry::command
