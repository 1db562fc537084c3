#pragma once

#include <string>
#include <vector>

namespace quarry::host {

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
    bool fromZero = true;  ///< the y axis begins at 0, not at the smallest value
    std::vector<PlotBand> bands;
    std::vector<PlotMark> marks;
};

/// The plot with axes, grid and labels.
std::string Svg(const Plot& plot);

/// The curve alone, for a table.
std::string SparklineSvg(const Plot& plot);

}  // namespace quarry::host
