#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace quarry::command {

/// A picture and its sharpness.
struct Measured {
    std::string caption;  ///< HTML
    std::string alt;
    cv::Mat picture;
    float variance;  ///< squared grey levels
};

/// The pictures in a row, each over a bar as long as its value on a logarithmic scale.
/// @param layout  the style of the row: "three", "four"
std::string Gallery(const std::vector<Measured>& series, const std::string& layout);

/// Of a picture in a gallery, as much as is shown pixel by pixel: scaled down, a blurred one looks sharp.
inline const cv::Size kCut(340, 255);

/// The middle of a picture, of this size where it is as large.
cv::Mat MiddleOf(const cv::Mat& picture, const cv::Size& size);

}  // namespace quarry::command
