#include "Demo/Plot.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "Demo/Html.h"

namespace quarry::host {
namespace {

using html::Escape;
using html::Number;

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

/// The values' range, never empty.
Range RangeOf(const std::vector<double>& values) {
    if (values.empty()) return {0, 1};
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    return *high > *low ? Range{*low, *high} : Range{*low, *low + 1};
}

/// Widened to whole steps, with some air above the curve.
Range YRange(const Plot& plot) {
    Range range = RangeOf(plot.y);
    if (plot.fromZero) range.low = 0;
    const double air = (range.high - range.low) * 0.08;
    if (!plot.fromZero) range.low -= air;
    range.high += air;
    const double step = Step(range.high - range.low, 5);
    return {std::floor(range.low / step) * step, std::ceil(range.high / step) * step};
}

std::string Line(double x1, double y1, double x2, double y2, const char* style) {
    return std::string("<line class=\"") + style + "\" x1=\"" + Number(x1, 1) + "\" y1=\"" + Number(y1, 1) +
           "\" x2=\"" + Number(x2, 1) + "\" y2=\"" + Number(y2, 1) + "\"/>";
}

std::string Text(double x, double y, const char* style, const std::string& text) {
    return std::string("<text class=\"") + style + "\" x=\"" + Number(x, 1) + "\" y=\"" + Number(y, 1) + "\">" +
           Escape(text) + "</text>";
}

std::string Points(const Plot& plot, const Area& area) {
    std::string points;
    for (std::size_t i = 0; i < plot.x.size(); ++i) {
        points += Number(area.Column(plot.x[i]), 1) + "," + Number(area.Row(plot.y[i]), 1) + " ";
    }
    return points;
}

/// The curve and, where the axis begins at 0, the area under it.
std::string Curve(const Plot& plot, const Area& area) {
    if (plot.x.empty()) return "";
    const std::string points = Points(plot, area);
    const std::string line = "<polyline class=\"curve\" points=\"" + points + "\"/>";
    if (!plot.fromZero) return line;
    const std::string bottom = Number(area.bottom, 1);
    return "<polygon class=\"under\" points=\"" + Number(area.Column(plot.x.front()), 1) + "," + bottom + " " + points +
           Number(area.Column(plot.x.back()), 1) + "," + bottom + "\"/>" + line;
}

std::string XAxis(const Plot& plot, const Area& area) {
    std::string svg;
    const double step = Step(area.x.high - area.x.low, 10);
    const int digits = step < 1 ? 1 : 0;
    for (double value = std::ceil(area.x.low / step) * step; value <= area.x.high + step * 1e-6; value += step) {
        const double column = area.Column(value);
        svg += Line(column, area.bottom, column, area.bottom + 5, "axis");
        svg += Text(column, area.bottom + 20, "middle", Number(value, digits));
    }
    svg += Line(area.left, area.bottom, area.right, area.bottom, "axis");
    return svg + Text((area.left + area.right) / 2, area.bottom + 42, "middle name", plot.xLabel);
}

std::string YAxis(const Plot& plot, const Area& area) {
    std::string svg;
    const double step = Step(area.y.high - area.y.low, 5);
    const int digits = step < 1 ? static_cast<int>(std::ceil(-std::log10(step))) : 0;
    for (double value = area.y.low; value <= area.y.high + step * 1e-6; value += step) {
        svg += Line(area.left, area.Row(value), area.right, area.Row(value), "grid");
        svg += Text(area.left - 10, area.Row(value) + 4, "end", Number(value, digits));
    }
    const double middle = (area.top + area.bottom) / 2;
    return svg + "<text class=\"middle name\" transform=\"translate(16 " + Number(middle, 1) + ") rotate(-90)\">" +
           Escape(plot.yLabel) + "</text>";
}

Range Shown(const PlotBand& band, const Area& area) {
    return {area.Column(std::max(band.from, area.x.low)), area.Column(std::min(band.to, area.x.high))};
}

std::string Band(const PlotBand& band, const Area& area) {
    const Range columns = Shown(band, area);
    return "<rect class=\"band\" x=\"" + Number(columns.low, 1) + "\" y=\"" + Number(area.top, 1) + "\" width=\"" +
           Number(columns.high - columns.low, 1) + "\" height=\"" + Number(area.bottom - area.top, 1) + "\"/>";
}

std::string BandName(const PlotBand& band, const Area& area) {
    const Range columns = Shown(band, area);
    return Text((columns.low + columns.high) / 2, area.bottom - 10, "middle bandname", band.label);
}

std::string Mark(const PlotMark& mark, const Area& area) {
    const double column = area.Column(mark.x);
    return Line(column, area.top, column, area.bottom, "mark") + "<circle class=\"mark\" cx=\"" + Number(column, 1) +
           "\" cy=\"" + Number(area.top - 4, 1) + "\" r=\"10\"/>" +
           Text(column, area.top, "middle markname", mark.label);
}

}  // namespace

std::string Svg(const Plot& plot) {
    const Area area = {72, 28, 944, 250, RangeOf(plot.x), YRange(plot)};
    std::string svg =
        "<div class=\"plot\"><svg viewBox=\"0 0 960 300\" role=\"img\" aria-label=\"" + Escape(plot.title) + "\">\n";
    for (const PlotBand& band : plot.bands) svg += Band(band, area);
    svg += YAxis(plot, area) + Curve(plot, area) + XAxis(plot, area);
    for (const PlotMark& mark : plot.marks) svg += Mark(mark, area);
    for (const PlotBand& band : plot.bands) svg += BandName(band, area);
    return svg + "\n</svg></div>\n";
}

std::string SparklineSvg(const Plot& plot) {
    const Area area = {2, 6, 238, 84, RangeOf(plot.x), YRange(plot)};
    return "<svg class=\"spark\" viewBox=\"0 0 240 90\" role=\"img\" aria-label=\"" + Escape(plot.title) + "\">" +
           Curve(plot, area) + Line(area.left, area.bottom, area.right, area.bottom, "axis") + "</svg>";
}

}  // namespace quarry::host
