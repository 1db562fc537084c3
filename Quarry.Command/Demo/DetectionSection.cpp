#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Annotation.h"
#include "Console.h"
#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Detection.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

constexpr std::size_t kPictures = 3;
constexpr std::pair<CascadeMode, const char*> kModes[] = {{CascadeMode::Careful, "mode 0: six neighbouring hits"},
                                                          {CascadeMode::Eager, "mode 1: two hits"},
                                                          {CascadeMode::Biggest, "mode 2: three hits"}};
constexpr int kSmallestFace = 24;  // pixels
constexpr int kShownWidth = 420;
constexpr int kTableWidth = 480;

std::optional<CascadeDetector> FaceDetector(const Footage& footage, CascadeMode mode) try {
    return OpenDetector({footage.faceModel.string(), kSmallestFace, -1 /* no limit */, mode});
} catch (const Failure&) {
    return std::nullopt;  // the page says so
}

std::vector<Picture> Chosen(const Footage& footage) {
    std::vector<Picture> chosen = footage.portraits.empty() ? footage.pictures : footage.portraits;
    chosen.resize(std::min(kPictures, chosen.size()));
    return chosen;
}

std::string CountOf(const DetectionView& view) {
    return view.found.empty() ? "none" : std::to_string(view.found.size());
}

std::string FigureOf(const Picture& picture, const DetectionView& view, const std::string& caption) {
    return html::Figure(
        html::Jpeg(MarkFound(picture.pixels, view.found), kShownWidth, picture.name + ", what was found marked"),
        R"(<span class="pair"><span>)" + caption + "</span><b>" + CountOf(view) + "</b></span>");
}

struct Run {
    std::vector<DetectionView> views;
    std::string figures;
};

Run SearchAll(const std::vector<Picture>& pictures, CascadeDetector& detector) {
    Run run;
    Progress progress("detection", "pictures", static_cast<int>(pictures.size()));
    for (const Picture& picture : pictures) {
        run.views.push_back(Search(detector, picture.pixels));
        run.figures += FigureOf(picture, run.views.back(), html::Escape(picture.name));
        progress.Advance();
    }
    return run;
}

/// The same picture, searched in every mode.
std::string ModesHtml(const Footage& footage, const Picture& picture) {
    std::string figures;
    for (const auto& [mode, name] : kModes) {
        std::optional<CascadeDetector> detector = FaceDetector(footage, mode);
        if (detector) figures += FigureOf(picture, Search(*detector, picture.pixels), name);
    }
    return "<h3>How sure it has to be</h3>\n<p class=\"quiet\">The fewer neighbouring hits make a detection, the more "
           "is found, and the more of it is wrong.</p>\n<div class=\"three\">" +
           figures + "</div>\n";
}

void Fill(Section& section, const Footage& footage, CascadeDetector& detector) {
    const std::vector<Picture> pictures = Chosen(footage);
    const Run run = SearchAll(pictures, detector);
    std::vector<double> milliseconds;
    for (const DetectionView& view : run.views) milliseconds.push_back(view.milliseconds);
    const std::string faces = footage.portraits.empty() ? "; none is known to show a face" : " that show faces";
    section.input = std::to_string(pictures.size()) + " pictures" + faces;
    section.result =
        html::Jpeg(MarkFound(pictures[0].pixels, run.views[0].found), kTableWidth, "A picture with what was found");
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted = "per picture";
    section.body = "<p class=\"quiet\">Searched for faces seen from the front, at least " +
                   std::to_string(kSmallestFace) + " pixels wide, with the model " +
                   html::Escape(footage.faceModel.filename().string()) +
                   ". Bold: how many were found.</p>\n<div class=\"three\">" + run.figures + "</div>\n" +
                   ModesHtml(footage, pictures[0]);
}

}  // namespace

Section DetectionSection(const Footage& footage) {
    Section section;
    section.id = "cascade-detector";
    section.title = "Cascade detector";
    section.summary = "Finds objects of the kind that a model was trained for, here faces.";
    section.input = "not run: no model of faces";
    section.body = "<p class=\"quiet\">Not run: there is no model of faces that can be read at " +
                   html::Escape(footage.faceModel.string()) + ".</p>\n";
    std::optional<CascadeDetector> detector = FaceDetector(footage, CascadeMode::Careful);
    if (detector) Fill(section, footage, *detector);
    return section;
}

}  // namespace quarry::command
