#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "Demo/Plot.h"

namespace quarry::command {

/// Three instants of a clip, shown in a row; letters name them in the plots of the section.
class Shots {
public:
    /// @param frames  of which the three are taken
    explicit Shots(int frames);

    /// Whether this frame is one of them.
    bool Wants(int frame) const;

    /// @param caption  HTML; what was found
    void Add(double seconds, const cv::Mat& picture, const std::string& caption);

    /// The one to stand for all, for the table.
    std::string TableHtml(const std::string& alt) const;

    std::string Html(const std::string& alt) const;

    const std::vector<PlotMark>& marks() const { return plotMarks; }

private:
    int frameCount;
    std::vector<PlotMark> plotMarks;
    std::vector<cv::Mat> pictures;
    std::vector<std::string> captions;
};

}  // namespace quarry::command
