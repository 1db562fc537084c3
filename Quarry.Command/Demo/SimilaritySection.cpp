#include <Quarry/Host.hpp>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr int kLevels = 8;  // per channel: 8 x 8 x 8 bins are 512 values
constexpr int kThumbnail = 144;
constexpr int kRepeats = 200;  // of a pair, for one reading of the clock

using Embedding = std::array<float, CosineSimilarity::kLength>;

/// The colours of a picture: how often each of 512 occurs, scaled to length 1.
Embedding HistogramOf(const cv::Mat& picture) {
    Embedding values{};
    for (int row = 0; row < picture.rows; ++row) {
        for (int column = 0; column < picture.cols; ++column) {
            const auto& pixel = picture.at<cv::Vec3b>(row, column);
            int bin = 0;
            for (int channel = 0; channel < 3; ++channel) bin = bin * kLevels + pixel[channel] * kLevels / 256;
            values[static_cast<std::size_t>(bin)] += 1;
        }
    }
    double squared = 0;
    for (const float value : values) squared += static_cast<double>(value) * static_cast<double>(value);
    for (float& value : values) value = static_cast<float>(static_cast<double>(value) / std::sqrt(squared));
    return values;
}

struct Pair {
    double similarity;
    double milliseconds;
};

Pair Measure(CosineSimilarity& compare, const Embedding& first, const Embedding& second) {
    const Stopwatch watch;
    double similarity = 0;
    for (int i = 0; i < kRepeats; ++i) similarity = compare(first, second);
    return {similarity, watch.Milliseconds() / kRepeats};
}

std::string Head(const Picture& picture) {
    return R"(<th scope="col">)" + html::Jpeg(picture.pixels, kThumbnail, picture.name) + "</th>";
}

std::string Cell(double similarity) {
    return "<td" + html::Attribute("style", "--share:" + Number(std::fmax(0, similarity), 3)) + ">" +
           Number(similarity, 2) + "</td>";
}

/// The same without numbers and pictures, for the overview.
std::string Checkered(const std::vector<std::vector<double>>& similarities) {
    const int count = static_cast<int>(similarities.size());
    const cv::Vec3b colour(20, 98, 214);
    cv::Mat picture(count, count, CV_8UC4);
    for (int row = 0; row < count; ++row) {
        for (int column = 0; column < count; ++column) {
            const double similarity = similarities[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
            picture.at<cv::Vec4b>(row, column) = {colour[0], colour[1], colour[2],
                                                  cv::saturate_cast<uchar>(255 * similarity)};
        }
    }
    return "<svg" + html::Attribute("class", "spark") + html::Attribute("viewBox", "0 0 240 120") +
           html::Attribute("role", "img") + html::Attribute("aria-label", "Similarity of all pairs") + "><image" +
           html::Attribute("class", "strip") + html::Attribute("x", "60") + html::Attribute("width", "120") +
           html::Attribute("height", "120") + html::Attribute("href", html::PngAddress(picture)) + "/></svg>";
}

}  // namespace

Section SimilaritySection(const Footage& footage) {
    const std::vector<Picture>& pictures = footage.pictures;
    std::vector<Embedding> embeddings;
    embeddings.reserve(pictures.size());
    for (const Picture& picture : pictures) embeddings.push_back(HistogramOf(picture.pixels));

    CosineSimilarity compare;
    std::vector<double> milliseconds;
    std::vector<std::vector<double>> similarities(pictures.size());
    std::string rows;
    std::string heads;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        heads += Head(pictures[i]);
        rows += R"(<tr><th scope="row">)" + html::Escape(pictures[i].name) + "</th>";
        for (const Embedding& other : embeddings) {
            const Pair pair = Measure(compare, embeddings[i], other);
            milliseconds.push_back(pair.milliseconds);
            similarities[i].push_back(pair.similarity);
            rows += Cell(pair.similarity);
        }
        rows += "</tr>\n";
    }

    Section section;
    section.id = "cosine-similarity";
    section.title = "Cosine similarity";
    section.summary = "How alike two descriptions of 512 numbers are: 1 the same direction, 0 nothing in common.";
    section.input = "colour histograms of " + std::to_string(pictures.size()) + " pictures";
    section.result = Checkered(similarities);
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted = "per pair";
    section.body =
        R"(<h3>Pictures by their colours</h3>
<p class="quiet">Hosts compare descriptions of faces or people that some model made. Here, for want of a model, a
picture is described by its colours: how often each of 8 &times; 8 &times; 8 = 512 occurs, scaled to length 1.</p>
<div class="scroll"><table class="matrix"><thead><tr><td></td>)" +
        heads + "</tr></thead>\n<tbody>\n" + rows + "</tbody></table></div>\n";
    return section;
}

}  // namespace quarry::command
