#include "Demo/Shots.h"

#include <algorithm>
#include <cstddef>

#include "Demo/Html.h"

namespace quarry::command {
namespace {

constexpr int kCount = 3;
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

std::string FigureOf(const cv::Mat& picture, const PlotMark& mark, const std::string& alt, const std::string& caption) {
    const std::string time = html::Number(mark.x, 1) + " s";
    return html::Figure(html::Jpeg(picture, kShownWidth, alt + " at " + time),
                        mark.label + " &middot; " + time + " &middot; " + caption);
}

}  // namespace

Shots::Shots(int frames) : frameCount(frames) {}

bool Shots::Wants(int frame) const {
    for (int k = 1; k <= kCount; ++k) {
        if (frame == std::max(0, k * frameCount / kCount - 1)) return true;
    }
    return false;
}

void Shots::Add(double seconds, const cv::Mat& picture, const std::string& caption) {
    plotMarks.push_back({seconds, std::string(1, static_cast<char>('A' + plotMarks.size()))});
    pictures.push_back(picture);
    captions.push_back(caption);
}

std::string Shots::TableHtml(const std::string& alt) const {
    return html::Jpeg(pictures[pictures.size() / 2], kTableWidth, alt);
}

std::string Shots::Html(const std::string& alt) const {
    std::string figures;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        figures += FigureOf(pictures[i], plotMarks[i], alt, captions[i]);
    }
    return R"(<div class="three">)" + figures + "</div>\n";
}

}  // namespace quarry::command
