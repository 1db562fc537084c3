#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

namespace quarry {

/// An outermost border and the area that it encloses, measured between the centres of its pixels.
struct OuterContour {
    std::vector<cv::Point> points;
    double area;
};

/// The outermost borders of the regions that are not black in grey, in the order in which they are found, without the
/// small ones. Holes belong to their region. The frame's pixels are R, G, B and are only read, in place.
/// @param precision    above 0.5 every border pixel is kept; otherwise, and when it is not a number, contours are
///                     Teh-Chin chains by k-cosine
/// @param minAreaRate  the smallest area that is kept, as a share of the frame's; truncated to whole pixels
/// @throws cv::Exception  `data` is null while the frame is not empty, or the frame is empty
std::vector<OuterContour> FindOuterContours(const Image& image, float precision, float minAreaRate);

}  // namespace quarry
