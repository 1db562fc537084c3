#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// How two histograms of hue and saturation are compared.
enum class ColourMeasure : int32_t {
    Correlation,
    ChiSquare,
    Intersection,
    Bhattacharyya,
    AlternativeChiSquare,
    KullbackLeibler,
};

/// Part of a picture, in shares of its width and height.
struct RelativeArea {
    float x = 0, y = 0, width = 1, height = 1;
};

/// The pixels that are compared when the first picture is of this size: fractions of a pixel do not count.
cv::Rect PixelsOf(const RelativeArea& area, const cv::Size& size);

/// Compares the colours of the same area of two pictures.
class ColourComparer {
public:
    explicit ColourComparer(ColourMeasure measure);

    /// @param first   packed 8-bit B, G, R
    /// @param second  the same, large enough for the area
    /// @param area    of the first; its pixels are taken from both
    double Compare(const cv::Mat& first, const cv::Mat& second, const RelativeArea& area);

private:
    Handle handle;
};

}  // namespace quarry::host
