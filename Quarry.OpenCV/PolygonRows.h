#pragma once

#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

namespace quarry {

/// +1 inside the polygon, -1 outside, 0 on its border, by OpenCV.
/// @throws cv::Exception  OpenCV refuses the polygon
int SideOf(const std::vector<cv::Point2f>& polygon, const cv::Point2f& point);

/// A polygon whose sides are sorted into bands of rows, for many questions where a point lies: only the sides in the
/// point's band can touch it or separate it from the outside.
///
/// OpenCV itself is asked wherever its rounding might decide, so that the answers are its own in every release: a point
/// next to a border but not exactly on it, coordinates that are not finite or huge, a polygon without corners.
class PolygonRows {
public:
    /// @param corners  must outlive this object
    explicit PolygonRows(const std::vector<cv::Point2f>& corners);

    /// The same as the function of this name.
    int SideOf(const cv::Point2f& point) const;

private:
    struct Side {
        cv::Point2f from, to;
    };

    void Measure();
    void SortSides();
    std::size_t BandOf(float y) const;

    const std::vector<cv::Point2f>& polygon;
    std::vector<Side> sides;          ///< band by band; a side stands in each band that it runs through
    std::vector<std::size_t> starts;  ///< of the bands in `sides`, then its end; none where OpenCV is always asked
    float top = 0, bottom = 0;
    double bandsPerRow = 0;
};

}  // namespace quarry
