#include "Demo/Gallery.h"

#include <algorithm>
#include <cmath>

#include "Demo/Html.h"

namespace quarry::command {
namespace {

using html::Number;

constexpr double kLongestBar = 20'000;  // squared grey levels

std::string Bar(float variance) {
    const double share = std::log(1 + std::max(0.0, static_cast<double>(variance))) / std::log(1 + kLongestBar);
    return R"(<span class="bar"><i)" +
           html::Attribute("style", "width:" + Number(std::min(1.0, share) * 100, 0) + "%") + "></i></span>";
}

}  // namespace

std::string Gallery(const std::vector<Measured>& series, const std::string& layout) {
    std::string gallery = "<div" + html::Attribute("class", layout) + ">\n";
    for (const Measured& one : series) {
        const std::string value = Number(static_cast<double>(one.variance), one.variance < 100 ? 1 : 0);
        gallery += html::Figure(
            html::Jpeg(one.picture, kCut.width, one.alt),
            R"(<span class="pair"><span>)" + one.caption + "</span><b>" + value + "</b></span>" + Bar(one.variance));
    }
    return gallery + "</div>\n";
}

cv::Mat MiddleOf(const cv::Mat& picture, const cv::Size& size) {
    const cv::Size cut(std::min(size.width, picture.cols), std::min(size.height, picture.rows));
    return picture(cv::Rect({(picture.cols - cut.width) / 2, (picture.rows - cut.height) / 2}, cut)).clone();
}

}  // namespace quarry::command
