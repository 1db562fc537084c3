#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Moving.h"
#include "Demo/Plot.h"
#include "Demo/Section.h"
#include "Demo/Shots.h"
#include "Foreground.h"
#include "OutlinePicture.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

const cv::Size kGrid(32, 24);
constexpr int kShownWidth = 640;

struct Run {
    explicit Run(const Clip& clip) : shots(MovingFrames(clip)) {}

    cv::Size grid;
    Plot share;
    Shots shots;
    std::vector<double> milliseconds;
    cv::Mat frame;    ///< the last one
    cv::Mat times;    ///< 64-bit floats: in how many frames each cell is occupied
    double most = 0;  ///< 0..1 of the time, of the cell that is occupied most
};

Run Play(const Clip& clip) {
    Run run(clip);
    run.share.title = "Share of the cells that are occupied, over time";
    run.share.xLabel = "time, s";
    run.share.yLabel = "occupied, % of the cells";
    run.grid = {std::min(kGrid.width, clip.size.width), std::min(kGrid.height, clip.size.height)};
    run.times = cv::Mat::zeros(run.grid, CV_64FC1);
    ContourGrid find(kUsualGrid);
    Progress progress("occupancy", "frames", MovingFrames(clip));
    const auto next = PlayMoving(clip);
    for (MovingFrame frame; next(frame);) {
        const cv::Mat redFirst = RedFirst(OnBlack(frame.pixels, frame.foreground));
        const Stopwatch watch;
        const ContourGrid::Cells found = find(ViewOf(redFirst), {run.grid.width, run.grid.height});
        run.milliseconds.push_back(watch.Milliseconds());
        const cv::Mat cells = MatOf(found);
        cv::accumulate(cells, run.times);
        const int occupied = cv::countNonZero(cells);
        run.share.x.push_back(frame.seconds);
        run.share.y.push_back(100.0 * occupied / run.grid.area());
        if (run.shots.Wants(frame.index)) {
            run.shots.Add(frame.seconds, MarkCells(frame.pixels, cells), std::to_string(occupied) + " occupied");
        }
        frame.pixels.copyTo(run.frame);
        progress.Advance();
    }
    run.share.marks = run.shots.marks();
    cv::minMaxLoc(run.times, nullptr, &run.most);
    run.most /= static_cast<double>(run.milliseconds.size());
    return run;
}

/// A frame in grey with its cells in colour, the stronger the more often they are occupied.
cv::Mat HeatPicture(const Run& run) {
    cv::Mat grey;
    cv::cvtColor(run.frame, grey, cv::COLOR_BGR2GRAY);
    cv::Mat picture;
    cv::cvtColor(grey, picture, cv::COLOR_GRAY2BGR);
    double most = 0;
    cv::minMaxLoc(run.times, nullptr, &most);
    const cv::Size cell(picture.cols / run.grid.width, picture.rows / run.grid.height);
    for (int row = 0; row < run.grid.height; ++row) {
        for (int column = 0; column < run.grid.width; ++column) {
            const double tint = most > 0 ? 0.75 * run.times.at<double>(row, column) / most : 0;
            cv::Mat part = picture(cv::Rect({column * cell.width, row * cell.height}, cell));
            cv::addWeighted(part, 1 - tint, cv::Mat(part.size(), part.type(), kMarkColour), tint, 0, part);
        }
    }
    return picture;
}

}  // namespace

Section OccupancySection(const Footage& footage) {
    const Run run = Play(footage.clip);

    Section section;
    section.id = "occupancy-grid";
    section.title = "Occupancy grid";
    section.summary = "Which cells of a coarse grid are covered by what is not black in a frame.";
    section.input = MovingInput(footage.clip);
    section.result = run.shots.TableHtml("A frame with its occupied cells");
    section.milliseconds = Quantile(run.milliseconds, 0.5);
    section.counted = "without the background model";
    section.body =
        R"(<div class="inset">)" +
        html::Figure(html::Jpeg(HeatPicture(run), kShownWidth, "How often cells are occupied"),
                     "How often each cell is occupied over the time of the clip.") +
        R"(<div class="stack">)" +
        html::Fact(html::Time(section.milliseconds), "per frame, median, without the background model") +
        html::Fact(std::to_string(run.grid.width) + " &times; " + std::to_string(run.grid.height), "cells") +
        html::Fact(Number(run.most * 100, 0) + "&nbsp;%", "of the time: the cell that is occupied most") +
        "</div></div>\n<h3>How much of the grid is occupied</h3>\n" + Svg(run.share) +
        "<p class=\"quiet\">A cell is occupied when more than 30 % of it is covered. Letters mark the instants shown "
        "below.</p>\n" +
        run.shots.Html("Occupied cells");
    return section;
}

}  // namespace quarry::command
