#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Annotation.h"
#include "Demo/Gallery.h"
#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr const char* kPreferred = "baboon.jpg";
constexpr double kStrongBlur = 4;  // pixels, sigma
constexpr double kSigmas[] = {4, 2, 1, 0};
constexpr int kTableWidth = 480;
constexpr int kRepeats = 15;  // from which the time is taken

const Picture& Chosen(const std::vector<Picture>& pictures) {
    const auto found = std::find_if(pictures.begin(), pictures.end(),
                                    [](const Picture& picture) { return picture.name == kPreferred; });
    return found != pictures.end() ? *found : pictures.front();
}

FaceEllipse FaceIn(const Picture& picture) {
    const cv::Size size = picture.pixels.size();
    if (picture.name == kPreferred)
        return {size.width / 2, size.height * 46 / 100, size.width / 4, size.height * 42 / 100};
    return {size.width / 2, size.height / 2, size.width / 5, size.height / 3};
}

cv::Mat Blurred(const cv::Mat& picture, double sigma) {
    cv::Mat blurred = picture.clone();
    if (sigma > 0) cv::GaussianBlur(picture, blurred, {}, sigma);
    return blurred;
}

cv::Mat MaskOf(const cv::Size& size, const FaceEllipse& face) {
    cv::Mat mask(size, CV_8UC1, cv::Scalar(0));
    cv::ellipse(mask, {face.centerX, face.centerY}, {face.halfWidth, face.halfHeight}, 0, 0, 360, 255, cv::FILLED);
    return mask;
}

/// Measures variants of one picture, all with the same face.
class Bench {
public:
    explicit Bench(const Picture& picture_) : picture(picture_), ellipse(FaceIn(picture_)) {}

    Measured Measure(const cv::Mat& pixels, const std::string& caption, bool tellWhole) {
        const float inside = measure(ViewOf(pixels), ellipse);
        const std::string whole =
            tellWhole ? " &middot; all: " + Number(static_cast<double>(measureWhole(ViewOf(pixels))), 0) : "";
        return {caption + whole, picture.name + ", its face in an ellipse", MarkFace(pixels, ellipse), inside};
    }

    std::vector<Measured> PartsBlurred() {
        const cv::Mat blurred = Blurred(picture.pixels, kStrongBlur);
        const cv::Mat mask = MaskOf(blurred.size(), ellipse);
        cv::Mat sharpFace = blurred.clone();
        picture.pixels.copyTo(sharpFace, mask);
        cv::Mat blurredFace = picture.pixels.clone();
        blurred.copyTo(blurredFace, mask);
        return {Measure(picture.pixels, "as it is", true), Measure(sharpFace, "all but the face blurred", true),
                Measure(blurredFace, "the face blurred", true)};
    }

    std::vector<Measured> FromBlurredToSharp() {
        std::vector<Measured> series;
        for (const double sigma : kSigmas) {
            const std::string caption = sigma > 0 ? "&sigma; = " + Number(sigma, 0) + "&nbsp;px" : "as it is";
            series.push_back(Measure(Blurred(picture.pixels, sigma), caption, false));
        }
        return series;
    }

    double MedianMilliseconds() {
        std::vector<double> milliseconds;
        for (int i = 0; i < kRepeats; ++i) {
            const Stopwatch watch;
            measure(ViewOf(picture.pixels), ellipse);
            milliseconds.push_back(watch.Milliseconds());
        }
        return Quantile(milliseconds, 0.5);
    }

    const FaceEllipse& face() const { return ellipse; }

private:
    const Picture& picture;
    FaceEllipse ellipse;
    FaceVarianceOfLaplacian measure;
    VarianceOfLaplacian measureWhole;
};

}  // namespace

Section FaceSharpnessSection(const Footage& footage) {
    const Picture& picture = Chosen(footage.pictures);
    Bench bench(picture);
    const std::string name = html::Escape(picture.name);

    Section section;
    section.id = "face-sharpness";
    section.title = "Face sharpness";
    section.summary = "The same within an ellipse: what lies outside does not count.";
    section.input = name + ", " + std::to_string(picture.pixels.cols) + " &times; " +
                    std::to_string(picture.pixels.rows) + " pixels";
    section.result = html::Jpeg(MarkFace(picture.pixels, bench.face()), kTableWidth, "A face in its ellipse");
    section.milliseconds = bench.MedianMilliseconds();
    section.counted = "per picture";
    section.body = "<h3>Only the face counts</h3>\n" + Gallery(bench.PartsBlurred(), "three") +
                   R"(<p class="quiet">Bold: sharpness of the ellipse, in grey levels&sup2;; bars are on a logarithmic
scale. &ldquo;All&rdquo; is the sharpness of the whole picture, which a blurred background pulls down and a blurred face
hardly changes. Outside the ellipse all counts as black, so its border and its size are part of the value.</p>
)" + "<h3>From blurred to sharp</h3>\n" +
                   Gallery(bench.FromBlurredToSharp(), "four");
    return section;
}

}  // namespace quarry::command
