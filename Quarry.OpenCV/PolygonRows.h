#pragma once

#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry {

/// +1 inside the polygon, -1 outside, 0 on its border, as OpenCV decides.
/// @throws cv::Exception  OpenCV refuses the polygon
int SideOf(const std::vector<cv::Point2f>& polygon, const cv::Point2f& point);

/// Tells for many points whether they lie inside one polygon. The polygon's sides are sorted into bands of rows, since
/// only the sides in a point's band can touch it or separate it from the outside.
///
/// OpenCV is called wherever its rounding might decide, so that the results equal its own in every release: for a point
/// next to a border but not exactly on it, for coordinates that are huge or not finite, and for a polygon without
/// corners.
class PolygonRows {
public:
    /// @param corners  must outlive this object
    explicit PolygonRows(const std::vector<cv::Point2f>& corners);

    /// The same result as the function of this name.
    int SideOf(const cv::Point2f& point) const;

private:
    struct Side {
        cv::Point2f from, to;
    };

    void Measure();
    void SortSides();
    std::size_t BandOf(float y) const;

    const std::vector<cv::Point2f>& polygon;
    std::vector<Side> sides;          ///< band by band; a side is listed in each band that it runs through
    std::vector<std::size_t> starts;  ///< of the bands in `sides`, then its end; empty if OpenCV decides every point
    float top = 0, bottom = 0;
    double bandsPerRow = 0;
};

}  // namespace quarry
