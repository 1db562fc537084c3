#include <Quarry/HostOpenCV.hpp>
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "Demo/Gallery.h"
#include "Demo/Html.h"
#include "Demo/Section.h"
#include "Progress.h"
#include "Timing.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr double kNoise = 12;  // standard deviation, grey levels
constexpr std::size_t kPictures = 3;
const cv::Size kShown(320, 240);
constexpr int kTableWidth = 480;

struct Denoised {
    std::string name;
    cv::Mat clean, noisy, denoised;
    double milliseconds;
};

cv::Mat WithNoise(const cv::Mat& picture) {
    cv::RNG random(1);
    cv::Mat noise(picture.size(), CV_16SC3);
    random.fill(noise, cv::RNG::NORMAL, 0, kNoise);
    cv::Mat noisy;
    cv::add(picture, noise, noisy, cv::noArray(), CV_8U);
    return noisy;
}

std::vector<Denoised> DenoiseSome(const std::vector<Picture>& pictures) {
    std::vector<Denoised> series;
    const std::size_t count = std::min(kPictures, pictures.size());
    FastNlMeansDenoising denoise;
    Progress progress("denoising", "pictures", static_cast<int>(count));
    for (std::size_t i = 0; i < count; ++i) {
        const cv::Mat clean = MiddleOf(pictures[i].pixels, kShown);
        const cv::Mat noisy = WithNoise(clean);
        const Stopwatch watch;
        const cv::Mat denoised = CloneOf(denoise(ViewOf(noisy)));
        series.push_back({pictures[i].name, clean, noisy, denoised, watch.Milliseconds()});
        progress.Advance();
    }
    return series;
}

std::string Labelled(const cv::Mat& picture, const std::string& what, const Denoised& one) {
    const std::string psnr = Number(cv::PSNR(one.clean, picture), 1) + "&nbsp;dB";
    return html::Figure(html::Png(picture, kShown.width, one.name + ", " + what),
                        R"(<span class="pair"><span>)" + what + "</span><b>" + psnr + "</b></span>");
}

std::string Triple(const Denoised& one) {
    return "<h3>" + html::Escape(one.name) + "</h3>\n" + R"(<div class="three">)" + Labelled(one.noisy, "noisy", one) +
           Labelled(one.denoised, "denoised", one) +
           html::Figure(html::Png(one.clean, kShown.width, one.name), "before the noise was added") + "</div>\n";
}

}  // namespace

Section DenoisingSection(const Footage& footage) {
    const std::vector<Denoised> series = DenoiseSome(footage.pictures);
    std::vector<double> milliseconds;
    std::string triples;
    for (const Denoised& one : series) {
        milliseconds.push_back(one.milliseconds);
        triples += Triple(one);
    }

    Section section;
    section.id = "nl-means-denoising";
    section.title = "Denoising";
    section.summary = "Averages pixels whose surroundings look alike, so that noise goes and edges stay.";
    section.input = "the middle of " + std::to_string(series.size()) + " pictures with noise added";
    section.result = html::Jpeg(series.front().denoised, kTableWidth, "A denoised picture");
    section.milliseconds = Quantile(milliseconds, 0.5);
    section.counted = "per picture of " + std::to_string(series.front().clean.cols) + " &times; " +
                      std::to_string(series.front().clean.rows);
    section.body = R"(<p class="quiet">Gaussian noise with a standard deviation of )" + Number(kNoise, 0) +
                   R"( grey levels was added to the middle of each picture. Bold: peak signal-to-noise ratio against
the picture without noise; higher is nearer to it. Fine texture that looks like noise goes with the noise.</p>
)" + triples;
    return section;
}

}  // namespace quarry::command
