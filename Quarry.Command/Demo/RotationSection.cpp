#include <Quarry/HostOpenCV.hpp>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

struct Turn {
    double angle;  ///< degrees
    double scale;
};

constexpr Turn kTurns[] = {{0, 1}, {15, 1}, {45, 1}, {90, 1}, {180, 1}, {-30, 0.6}, {0, 0.5}, {30, 1.6}};
constexpr int kShownWidth = 340;
constexpr int kTableWidth = 480;
constexpr std::size_t kInTable = 1;

}  // namespace

Section RotationSection(const Footage& footage) {
    const Picture& picture = footage.pictures.front();
    RotationTransform rotate({picture.pixels.cols, picture.pixels.rows});
    std::vector<double> milliseconds;
    std::vector<cv::Mat> turned;
    std::string figures;
    for (const Turn& turn : kTurns) {
        const Stopwatch watch;
        turned.push_back(CloneOf(rotate(ViewOf(picture.pixels), turn.angle, turn.scale)));
        milliseconds.push_back(watch.Milliseconds());
        const std::string scale = turn.scale == 1 ? "" : ", scale " + Number(turn.scale, 1);
        figures += html::Figure(html::Jpeg(turned.back(), kShownWidth, picture.name + ", turned"),
                                Number(turn.angle, 0) + "&deg;" + scale);
    }

    Section section;
    section.id = "frame-rotation";
    section.title = "Rotation";
    section.summary = "Turns a picture about its middle; corners and size are kept.";
    section.input = html::Escape(picture.name) + ", " + std::to_string(turned.size()) + " turns";
    section.result = html::Jpeg(turned[kInTable], kTableWidth, "A turned picture");
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted =
        "per picture of " + std::to_string(picture.pixels.cols) + " &times; " + std::to_string(picture.pixels.rows);
    section.body = R"(<h3>Angles and scales</h3>
<div class="four">)" +
                   figures +
                   R"(</div>
<p class="quiet">Positive angles turn counter-clockwise. A canvas takes the whole turned picture and then is squeezed into
the size of the picture, so that its proportions change with the angle. The scale enlarges the picture, not the
canvas.</p>
)";
    return section;
}

}  // namespace quarry::command
