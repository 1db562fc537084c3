#pragma once

#include <opencv2/core.hpp>
#include <vector>

/// Selects the contour of the object in a rectangle of a binary mask.
///
/// All borders are candidates, those of holes included (Suzuki and Abe, 1985). The selection mode rates them: 0 by
/// their area, 1 by the squared diagonal of their upright bounding box; any other mode rates all of them 0. The contour
/// with the highest rating is selected, the first one if several are equal. A contour that is rated 0 is never
/// selected.
/// @throws cv::Exception  the rectangle does not lie inside the mask, the mask is empty or not 8-bit with one channel,
///                        or the approximation method is unknown or gives chain codes
class ContourMeasuringFunctions {
public:
    /// @param rect    where to look, pixels of the mask
    /// @param mask    non-zero bytes are foreground; left as it is
    /// @param method  how contours are approximated, a `cv::ContourApproximationModes`
    /// @return points relative to the rectangle's top-left corner; empty if no contour is selected
    static std::vector<cv::Point_<int>> GetObjectContour(cv::Rect_<int> rect, cv::Mat& mask, int method,
                                                         int selectionMode);

    /// @return the selected contour; empty if there is none
    static std::vector<cv::Point_<int>> SelectContour(std::vector<std::vector<cv::Point_<int>>> contours,
                                                      int selectionMode);
};
