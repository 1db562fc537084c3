#pragma once

#include <cstdint>
#include <vector>

#include "plain/Steps.h"

/// The contour of an object, in plain steps.
namespace quarry::plain {

/// In 32 bits, wrapping.
inline int32_t SquaredDiagonal(const cv::Size& box) {
    const auto width = static_cast<uint32_t>(box.width);
    const auto height = static_cast<uint32_t>(box.height);
    return static_cast<int32_t>(width * width + height * height);
}

/// The border in a part of a mask with the highest score above 0, the earliest of equals, in pixels of the part; empty
/// where there is none.
inline PixelContour ChosenBorder(const cv::Mat& mask, const cv::Rect& part, int method, int mode) {
    CV_Assert(method != 0);  // chain codes are no points
    std::vector<PixelContour> borders;
    cv::findContours(mask(part).clone(), borders, cv::RETR_LIST, method);
    PixelContour best;
    double highest = 0;
    for (const PixelContour& border : borders) {
        double score = 0;
        if (mode == 0) score = cv::contourArea(border);
        if (mode == 1) score = SquaredDiagonal(cv::boundingRect(border).size());
        if (score <= highest) continue;
        highest = score;
        best = border;
    }
    return best;
}

inline Outline ObjectOutline(const cv::Mat& mask, const cv::Rect& part, int method, int mode) {
    const PixelContour border = ChosenBorder(mask, part, method, mode);
    if (border.empty()) return {};
    const auto width = static_cast<float>(mask.cols);
    volatile float area = static_cast<float>(mask.rows) * width;
    return {PlacesOf(border, part.tl(), mask.size()), static_cast<float>(cv::contourArea(border)) / area,
            static_cast<float>(cv::arcLength(border, true)) / width};
}

}  // namespace quarry::plain
