#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>
#include <utility>
#include <vector>

#include "Body.h"
#include "ClothingPicture.h"
#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Timing.h"

namespace quarry::command {
namespace {

constexpr int kRepeats = 9;       // from which the time is taken
constexpr double kMargin = 0.15;  // around a body, as a share of its height
constexpr int kZoomedHeight = 480;
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

struct Person {
    std::string name;  ///< HTML
    cv::Mat picture;
    Body body;
};

const cv::Size kFigureSize(320, 240);
constexpr RgbColor kRed = {0.75F, 0.16F, 0.18F}, kCream = {0.95F, 0.92F, 0.82F}, kNavy = {0.13F, 0.2F, 0.42F},
                   kSkin = {0.86F, 0.65F, 0.52F};
const std::string kFigureColours = "a red shirt with a cream stripe, navy shorts and bare shins";

cv::Scalar BytesOf(const RgbColor& colour) {
    return {colour.blue * 255.0, colour.green * 255.0, colour.red * 255.0};
}

/// Someone whose colours are known, drawn.
Person Figure() {
    Person person = {"a drawn figure", cv::Mat(kFigureSize, CV_8UC3, cv::Scalar(150, 165, 160)), {}};
    const auto draw = [&](int x, int y, int width, int height, const RgbColor& colour) {
        cv::rectangle(person.picture, cv::Rect(x, y, width, height), BytesOf(colour), cv::FILLED);
    };
    cv::circle(person.picture, {160, 36}, 18, BytesOf(kSkin), cv::FILLED, cv::LINE_AA);
    draw(114, 60, 16, 70, kRed);
    draw(190, 60, 16, 70, kRed);
    draw(130, 58, 60, 74, kRed);
    draw(130, 84, 60, 16, kCream);
    draw(130, 132, 26, 46, kNavy);
    draw(164, 132, 26, 46, kNavy);
    draw(132, 178, 22, 40, kSkin);
    draw(166, 178, 22, 40, kSkin);
    const int points[kBodyPoints][2] = {{160, 40},  {166, 34},  {154, 34},  {176, 36},  {144, 36},  {186, 62},
                                        {134, 62},  {198, 96},  {122, 96},  {198, 128}, {122, 128}, {177, 132},
                                        {143, 132}, {177, 178}, {143, 178}, {177, 220}, {143, 220}};
    for (std::size_t i = 0; i < kBodyPoints; ++i) {
        person.body[i] = {(static_cast<float>(points[i][0]) + 0.5F) / static_cast<float>(kFigureSize.width),
                          (static_cast<float>(points[i][1]) + 0.5F) / static_cast<float>(kFigureSize.height)};
    }
    return person;
}

/// What surrounds the body, enlarged, with the same body in it.
Person ZoomedTo(const Person& person) {
    const cv::Size size = person.picture.size();
    std::vector<cv::Point2f> pixels;
    for (const FloatPoint& point : person.body) {
        pixels.emplace_back(point.X * static_cast<float>(size.width), point.Y * static_cast<float>(size.height));
    }
    cv::Rect around = cv::boundingRect(pixels);
    const int margin = cvRound(around.height * kMargin);
    around.height += 2 * margin;
    around.x -= (around.height - around.width) / 2;
    around.y -= margin;
    around.width = around.height;
    around &= cv::Rect({0, 0}, size);
    Person zoomed = {person.name, {}, {}};
    const double scale = static_cast<double>(kZoomedHeight) / around.height;
    cv::resize(person.picture(around), zoomed.picture, {}, scale, scale, cv::INTER_CUBIC);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        zoomed.body[i] = {(pixels[i].x - static_cast<float>(around.x)) / static_cast<float>(around.width),
                          (pixels[i].y - static_cast<float>(around.y)) / static_cast<float>(around.height)};
    }
    return zoomed;
}

std::string Swatch(const RgbColor& colour, const std::string& what) {
    const std::string hex = HexOf(colour);
    return html::Fact(R"(<i class="swatch")" + html::Attribute("style", "background:" + hex) + "></i>" + hex, what);
}

std::string Shown(const Person& person, const ClothingColorsResult& colours) {
    const Person zoomed = ZoomedTo(person);
    return "<div class=\"two\">" +
           html::Figure(html::Jpeg(zoomed.picture, kShownWidth, "A person"), person.name + ", enlarged") +
           html::Figure(html::Png(WithSwatches(MarkBody(zoomed.picture, zoomed.body), colours), kShownWidth,
                                  "The areas of torso and legs"),
                        "the areas, over the colours found in them") +
           "</div>\n<div class=\"facts\">" + Swatch(colours.torso(0), "torso, first") +
           Swatch(colours.torso(1), "torso, second") + Swatch(colours.legs(0), "legs, first") +
           Swatch(colours.legs(1), "legs, second") + "</div>\n";
}

std::vector<Person> People(const Clip& clip) {
    std::vector<Person> people;
    if (clip.body) people.push_back({"a walker of " + html::Escape(clip.name), TargetFrameOf(clip), *clip.body});
    people.push_back(Figure());
    return people;
}

}  // namespace

Section ClothingSection(const Footage& footage) {
    const std::vector<Person> people = People(footage.clip);
    ClothingColors coloursOf;
    std::vector<double> milliseconds;
    std::vector<ClothingColorsResult> found;
    std::string shown;
    for (const Person& person : people) {
        for (int i = 0; i < kRepeats; ++i) {
            const Stopwatch watch;
            ClothingColorsResult colours = coloursOf(ViewOf(person.picture), person.body);
            milliseconds.push_back(watch.Milliseconds());
            if (i + 1 == kRepeats) found.push_back(std::move(colours));
        }
        shown += "<h3>The colours of " + person.name + "</h3>\n" + Shown(person, found.back());
    }
    const Person first = ZoomedTo(people.front());

    Section section;
    section.id = "clothing-colours";
    section.title = "Clothing colours";
    section.summary = "The two main colours of a person&rsquo;s torso and of the legs.";
    section.input = people.size() > 1 ? people.front().name + " and " + people.back().name : people.front().name;
    section.result =
        html::Jpeg(WithSwatches(MarkBody(first.picture, first.body), found.front()), kTableWidth, "A person's colours");
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted = "per person";
    section.body =
        "<p class=\"quiet\">Hosts have the 17 points of a body from some model; these were set by hand. The "
        "figure was drawn in " +
        kFigureColours + ", so its colours are known: " + HexOf(kRed) + ", " + HexOf(kCream) + ", " + HexOf(kNavy) +
        " and " + HexOf(kSkin) +
        ". Where an area reaches over an edge, a little of the neighbouring colour is mixed in.</p>\n" + shown;
    return section;
}

}  // namespace quarry::command
