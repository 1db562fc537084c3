#include "Demo/Plot.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <opencv2/core.hpp>

#include "Demo/Html.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Attribute;
using html::Escape;
using html::Number;

/// Colours of a file of its own, for what the page says in its own style.
constexpr const char* kStandaloneStyle = R"(<style>
text { font: 13px system-ui, sans-serif; fill: #676b73; }
.middle { text-anchor: middle; }
.end { text-anchor: end; }
.name { fill: #1d1f23; }
.axis { stroke: #676b73; opacity: 0.7; }
.strip { image-rendering: pixelated; }
</style>
<rect width="960" height="300" fill="#ffffff"/>
)";

const cv::Vec3b kAbove(28, 112, 224);  // B, G, R: orange
const cv::Vec3b kBelow(176, 132, 48);  // blue

struct Range {
    double low;
    double high;
};

/// A picture's area in SVG units, y downwards, and the values along its sides.
struct Area {
    double left, top, right, bottom;
    Range x, y;

    double Column(double value) const { return left + (value - x.low) / (x.high - x.low) * (right - left); }
    double Row(double value) const { return bottom - (value - y.low) / (y.high - y.low) * (bottom - top); }
};

/// A round step that divides the span into about `count` parts.
double Step(double span, double count) {
    const double power = std::pow(10, std::floor(std::log10(span / count)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (span / (factor * power) <= count) return factor * power;
    }
    return 10 * power;
}

/// The multiples of the step within a range.
std::vector<double> Ticks(const Range& range, double step) {
    const auto first = static_cast<long>(std::ceil(range.low / step - 1e-6));
    const auto last = static_cast<long>(std::floor(range.high / step + 1e-6));
    std::vector<double> ticks;
    for (long i = first; i <= last; ++i) ticks.push_back(static_cast<double>(i) * step);
    return ticks;
}

/// Digits after the point that tell multiples of the step apart.
int Digits(double step) {
    return step < 1 ? static_cast<int>(std::ceil(-std::log10(step) - 1e-6)) : 0;
}

/// The values' range, never empty.
Range RangeOf(const std::vector<double>& values) {
    if (values.empty()) return {0, 1};
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    return *high > *low ? Range{*low, *high} : Range{*low, *low + 1};
}

/// Widened to whole steps, with some air above the curve.
Range YRange(const Plot& plot) {
    std::vector<double> all = plot.y;
    all.insert(all.end(), plot.second.begin(), plot.second.end());
    Range range = RangeOf(all);
    if (plot.fromZero) range.low = 0;
    const double air = (range.high - range.low) * 0.08;
    if (!plot.fromZero) range.low -= air;
    range.high += air;
    const double step = Step(range.high - range.low, 5);
    return {std::floor(range.low / step) * step, std::ceil(range.high / step) * step};
}

std::string Line(double x1, double y1, double x2, double y2, const std::string& style) {
    return "<line" + Attribute("class", style) + Attribute("x1", Number(x1, 1)) + Attribute("y1", Number(y1, 1)) +
           Attribute("x2", Number(x2, 1)) + Attribute("y2", Number(y2, 1)) + "/>";
}

std::string Text(double x, double y, const std::string& style, const std::string& text) {
    return "<text" + Attribute("class", style) + Attribute("x", Number(x, 1)) + Attribute("y", Number(y, 1)) + ">" +
           Escape(text) + "</text>";
}

/// The picture stretched over a rectangle.
std::string Stretched(const cv::Mat& picture, double x, double y, double width, double height) {
    return "<image" + Attribute("class", "strip") + Attribute("x", Number(x, 1)) + Attribute("y", Number(y, 1)) +
           Attribute("width", Number(width, 1)) + Attribute("height", Number(height, 1)) +
           Attribute("preserveAspectRatio", "none") + Attribute("href", html::PngAddress(picture)) + "/>";
}

std::string Opened(const std::string& style, int width, int height, const std::string& title) {
    const std::string box = "0 0 " + std::to_string(width) + " " + std::to_string(height);
    return "<svg" + (style.empty() ? "" : Attribute("class", style)) + Attribute("viewBox", box) +
           Attribute("role", "img") + Attribute("aria-label", Escape(title)) + ">\n";
}

std::string InPlotBox(const std::string& svg) {
    return R"(<div class="plot">)" + svg + "</div>\n";
}

std::string Points(const std::vector<double>& x, const std::vector<double>& y, const Area& area) {
    std::string points;
    for (std::size_t i = 0; i < x.size(); ++i) {
        points += Number(area.Column(x[i]), 1) + "," + Number(area.Row(y[i]), 1) + " ";
    }
    return points;
}

/// The curve and, where the axis begins at 0, the area under it.
std::string Curve(const Plot& plot, const Area& area) {
    if (plot.x.empty()) return "";
    const std::string points = Points(plot.x, plot.y, area);
    std::string curve = "<polyline" + Attribute("class", "curve") + Attribute("points", points) + "/>";
    if (!plot.second.empty()) {
        return "<polyline" + Attribute("class", "curve second") +
               Attribute("points", Points(plot.x, plot.second, area)) + "/>" + curve;
    }
    if (!plot.fromZero) return curve;
    const std::string bottom = Number(area.bottom, 1);
    const std::string under = Number(area.Column(plot.x.front()), 1) + "," + bottom + " " + points +
                              Number(area.Column(plot.x.back()), 1) + "," + bottom;
    return "<polygon" + Attribute("class", "under") + Attribute("points", under) + "/>" + curve;
}

/// The curves' names at their ends.
std::string CurveNames(const Plot& plot, const Area& area) {
    if (plot.x.empty() || plot.second.empty()) return "";
    constexpr double kApart = 16;
    const double first = area.Row(plot.y.back()) - 9;
    double second = area.Row(plot.second.back()) - 9;
    if (second <= first && first - second < kApart) second = first - kApart;
    if (second > first && second - first < kApart) second = first + kApart;
    return Text(area.right - 4, first, "end curvename", plot.name) +
           Text(area.right - 4, second, "end curvename second", plot.secondName);
}

std::string XAxis(const std::string& label, const Area& area) {
    std::string svg;
    const double step = Step(area.x.high - area.x.low, 10);
    for (const double value : Ticks(area.x, step)) {
        const double column = area.Column(value);
        svg += Line(column, area.bottom, column, area.bottom + 5, "axis");
        svg += Text(column, area.bottom + 20, "middle", Number(value, Digits(step)));
    }
    svg += Line(area.left, area.bottom, area.right, area.bottom, "axis");
    return svg + Text((area.left + area.right) / 2, area.bottom + 42, "middle name", label);
}

std::string YAxis(const std::string& label, const Area& area) {
    std::string svg;
    const double step = Step(area.y.high - area.y.low, 5);
    for (const double value : Ticks(area.y, step)) {
        svg += Line(area.left, area.Row(value), area.right, area.Row(value), "grid");
        svg += Text(area.left - 10, area.Row(value) + 4, "end", Number(value, Digits(step)));
    }
    const std::string turned = "translate(16 " + Number((area.top + area.bottom) / 2, 1) + ") rotate(-90)";
    return svg + "<text" + Attribute("class", "middle name") + Attribute("transform", turned) + ">" + Escape(label) +
           "</text>";
}

Range Shown(const PlotBand& band, const Area& area) {
    return {area.Column(std::max(band.from, area.x.low)), area.Column(std::min(band.to, area.x.high))};
}

std::string Band(const PlotBand& band, const Area& area) {
    const Range columns = Shown(band, area);
    return "<rect" + Attribute("class", "band") + Attribute("x", Number(columns.low, 1)) +
           Attribute("y", Number(area.top, 1)) + Attribute("width", Number(columns.high - columns.low, 1)) +
           Attribute("height", Number(area.bottom - area.top, 1)) + "/>";
}

/// Nothing where the band is too narrow for its name.
std::string BandName(const PlotBand& band, const Area& area) {
    const Range columns = Shown(band, area);
    if (columns.high - columns.low < 12) return "";
    return Text((columns.low + columns.high) / 2, area.bottom - 10, "middle bandname", band.label);
}

std::string Mark(const PlotMark& mark, const Area& area) {
    const double column = area.Column(mark.x);
    const double middle = area.top - 14;  // above the highest label of the axis
    return Line(column, area.top, column, area.bottom, "mark") + "<circle" + Attribute("class", "mark") +
           Attribute("cx", Number(column, 1)) + Attribute("cy", Number(middle, 1)) + Attribute("r", "10") + "/>" +
           Text(column, middle + 4, "middle markname", mark.label);
}

/// The magnitude that is shown at full colour: all but a hundredth of the values are smaller.
double FullOf(const HeatStrip& strip) {
    std::vector<double> magnitudes;
    for (const std::vector<float>& column : strip.columns) {
        for (const float value : column) {
            if (!std::isnan(value)) magnitudes.push_back(std::abs(static_cast<double>(value)));
        }
    }
    return std::max(0.1, Quantile(std::move(magnitudes), 0.99));
}

cv::Vec4b ColourOf(double value, double full) {
    const cv::Vec3b& colour = value > 0 ? kAbove : kBelow;
    const double share = std::isnan(value) ? 0 : std::min(1.0, std::abs(value) / full);
    return {colour[0], colour[1], colour[2], cv::saturate_cast<uchar>(share * 255)};
}

cv::Mat PictureOf(const HeatStrip& strip, double full) {
    const std::size_t values = strip.columns.empty() ? 0 : strip.columns.front().size();
    cv::Mat picture(static_cast<int>(std::max<std::size_t>(1, values)),
                    static_cast<int>(std::max<std::size_t>(1, strip.columns.size())), CV_8UC4, cv::Scalar::all(0));
    for (std::size_t i = 0; i < strip.columns.size(); ++i) {
        for (std::size_t k = 0; k < values; ++k) {
            picture.at<cv::Vec4b>(static_cast<int>(values - 1 - k), static_cast<int>(i)) =
                ColourOf(static_cast<double>(strip.columns[i][k]), full);
        }
    }
    return picture;
}

/// From the largest value above to the smallest below.
std::string Legend(const Area& area, double full, const std::string& unit) {
    constexpr int kSteps = 65;
    cv::Mat picture(kSteps, 1, CV_8UC4);
    for (int i = 0; i < kSteps; ++i) picture.at<cv::Vec4b>(i, 0) = ColourOf(full * (1 - i * 2.0 / (kSteps - 1)), full);
    const double left = area.right + 18;
    const double middle = (area.top + area.bottom) / 2;
    return Stretched(picture, left, area.top, 12, area.bottom - area.top) +
           Text(left + 18, area.top + 10, "", "+" + Number(full, 1)) + Text(left + 18, middle + 4, "", "0 " + unit) +
           Text(left + 18, area.bottom, "", Number(-full, 1));
}

/// Every column as wide as the time from one to the next.
Range TimeOf(const HeatStrip& strip) {
    if (strip.x.size() < 2) return {0, 1};
    const double step = (strip.x.back() - strip.x.front()) / static_cast<double>(strip.x.size() - 1);
    return {strip.x.front(), strip.x.back() + step};
}

std::string Drawn(const HeatStrip& strip) {
    const Area area = {72, 28, 856, 250, TimeOf(strip), {0, 100}};
    const double full = FullOf(strip);
    std::string svg =
        Stretched(PictureOf(strip, full), area.left, area.top, area.right - area.left, area.bottom - area.top);
    svg += Line(area.left, area.top, area.left, area.bottom, "axis") + YAxis(strip.yLabel, area) +
           XAxis(strip.xLabel, area) + Legend(area, full, strip.unit);
    for (const PlotMark& mark : strip.marks) svg += Mark(mark, area);
    return svg + "\n</svg>\n";
}

}  // namespace

std::string Svg(const Plot& plot) {
    const Area area = {72, 28, 944, 250, RangeOf(plot.x), YRange(plot)};
    std::string svg = Opened("", 960, 300, plot.title);
    for (const PlotBand& band : plot.bands) svg += Band(band, area);
    svg += YAxis(plot.yLabel, area) + Curve(plot, area) + XAxis(plot.xLabel, area);
    for (const PlotMark& mark : plot.marks) svg += Mark(mark, area);
    for (const PlotBand& band : plot.bands) svg += BandName(band, area);
    return InPlotBox(svg + CurveNames(plot, area) + "\n</svg>");
}

std::string SparklineSvg(const Plot& plot) {
    const Area area = {2, 6, 238, 84, RangeOf(plot.x), YRange(plot)};
    return Opened("spark", 240, 90, plot.title) + Curve(plot, area) +
           Line(area.left, area.bottom, area.right, area.bottom, "axis") + "</svg>";
}

std::string Svg(const HeatStrip& strip) {
    return InPlotBox(Opened("", 960, 300, strip.title) + Drawn(strip));
}

std::string SparklineSvg(const HeatStrip& strip) {
    return Opened("spark", 240, 90, strip.title) + Stretched(PictureOf(strip, FullOf(strip)), 2, 2, 236, 82) +
           Line(2, 84, 238, 84, "axis") + Line(2, 2, 2, 84, "axis") + "</svg>";
}

std::string StandaloneSvg(const HeatStrip& strip) {
    return "<svg" + Attribute("xmlns", "http://www.w3.org/2000/svg") + Attribute("width", "960") +
           Attribute("height", "300") + Attribute("viewBox", "0 0 960 300") + ">\n<title>" + Escape(strip.title) +
           "</title>\n" + kStandaloneStyle + Drawn(strip);
}

}  // namespace quarry::command
