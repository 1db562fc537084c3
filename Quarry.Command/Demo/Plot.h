#pragma once

#include <string>
#include <vector>

namespace quarry::command {

/// A stretch of the x axis that the plot shades.
struct PlotBand {
    double from;
    double to;
    std::string label;
};

/// A place on the x axis that the plot marks with a line.
struct PlotMark {
    double x;
    std::string label;  ///< a letter or two
};

/// A curve over an axis, as inline SVG in the colours of the page.
struct Plot {
    std::string title;   ///< for those who cannot see it
    std::string xLabel;  ///< with unit
    std::string yLabel;  ///< with unit
    std::vector<double> x;
    std::vector<double> y;
    std::string name;            ///< of the curve, where there are two
    std::vector<double> second;  ///< another curve over the same x, none when empty
    std::string secondName;
    bool fromZero = true;  ///< the y axis begins at 0, not at the smallest value
    std::vector<PlotBand> bands;
    std::vector<PlotMark> marks;
};

/// The plot with axes, grid and labels.
std::string Svg(const Plot& plot);

/// The curve alone, for a table.
std::string SparklineSvg(const Plot& plot);

/// Values along a line, over time, as colours: orange above 0, blue below it, nothing at 0 and where there is no
/// number.
struct HeatStrip {
    std::string title;                        ///< for those who cannot see it
    std::string xLabel;                       ///< with unit
    std::string yLabel;                       ///< with unit
    std::string unit;                         ///< of the values
    std::vector<double> x;                    ///< at equal distances
    std::vector<std::vector<float>> columns;  ///< one per x, as many values each, the first one at the bottom
    std::vector<PlotMark> marks;
};

/// The strip with axes from 0 to 100 % of the line and a legend of its colours.
std::string Svg(const HeatStrip& strip);

/// The colours alone, for a table.
std::string SparklineSvg(const HeatStrip& strip);

/// A file of its own, in colours of its own.
std::string StandaloneSvg(const HeatStrip& strip);

}  // namespace quarry::command
