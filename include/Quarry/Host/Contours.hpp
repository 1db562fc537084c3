/// @file
/// Operations that find, locate and compare contours. Points are relative: fractions of the frame's width and height.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Quarry/Host/Operation.hpp"
#include "Quarry/Host/Results.hpp"

namespace quarry {

/// The points of a contour in a result; valid as long as the result.
inline Span<FloatPoint> PointsOf(const Contour& contour) {
    return {contour.Points, static_cast<std::size_t>(contour.Count)};
}

/// How contours are traced.
enum class Tracing : int32_t {
    EveryPixel = 1,      ///< every border pixel
    RunEnds = 2,         ///< ends of straight runs
    TehChinL1 = 3,       ///< Teh-Chin chain, L1
    TehChinKCosine = 4,  ///< Teh-Chin chain, k-cosine
};

/// Which of several contours is selected.
enum class Selection : int32_t {
    LargestArea = 0,
    LongestDiagonal = 1,  ///< of the bounding box
};

/// The outline of one object. Its elements are its points; an empty outline means that nothing was found.
class OutlineResult : public ListResult<ContourResult> {
public:
    using ListResult::ListResult;

    /// Share of the frame's area.
    float area() const { return record().Contour->Area; }
    /// Arc length, divided by the frame's width.
    float perimeter() const { return record().Contour->Perimeter; }
};

/// The outline of one object in a mask of the whole frame.
class ObjectContour : public detail::Processor<CreateCVContourCalculator, ContourCalcingInputData, ContourResult> {
public:
    struct Options {
        Tracing tracing = Tracing::RunEnds;
        Selection selection = Selection::LargestArea;
    };

    ObjectContour() : ObjectContour(Options{}) {}
    explicit ObjectContour(const Options& options)
        : Processor({0, 0, static_cast<int32_t>(options.tracing), static_cast<int32_t>(options.selection)}) {}

    /// @param mask  non-zero bytes are foreground
    /// @param area  rectangle around the object, relative to the frame
    /// @throws cv::Exception  the mask is empty, or the area does not lie inside it
    OutlineResult operator()(const MaskArgument& mask, const RelRect& area) {
        return {handle(), ContourCalcingInputData{0, mask.record(), area}};
    }
};

/// Columns and rows of a grid.
struct GridSize {
    int width = 1;
    int height = 1;
};

/// The grid cells that objects occupy in a frame that is black everywhere else: 1 occupied, 0 free.
class ContourGrid
    : public detail::Processor<CreateCVContourMaskProcessor, ContourMaskProcessorData, ContourMaskProcessorResult> {
public:
    struct Options {
        /// 0..1: a cell is occupied if more than this share of its pixels lies inside kept contours. Above 0.5 contours
        /// are traced pixel by pixel.
        float cellFillRate = 0.5F;
        float minContourAreaRate = 0;  ///< smallest contour that is kept, as a share of the frame's area
    };
    using Cells = MaskResult<ContourMaskProcessorResult>;

    ContourGrid() : ContourGrid(Options{}) {}
    explicit ContourGrid(const Options& options) : Processor({0, options.cellFillRate, options.minContourAreaRate}) {}

    /// @param frame  R, G, B
    /// @throws std::invalid_argument  a side of the grid is below 1, or the grid has more than 2147483647 cells
    /// @throws cv::Exception          the frame is empty
    Cells operator()(const ImageArgument& frame, const GridSize& grid) {
        detail::CheckOutputSize("quarry::GridSize", grid.width, grid.height);
        return {handle(), ContourMaskProcessorData{0, frame.record(), grid.width, grid.height}};
    }
};

/// Where a contour lies.
enum class ContourPosition : int32_t {
    Outside = -1,
    Crossing = 0,
    Inside = 1  ///< also if the first point lies on the border, whatever the others are
};

/// Where a contour lies with respect to a polygon.
class ContourIntersection
    : public detail::Processor<CreateCVContourIntersectionProcessor, ContourIntersectionProcessorData,
                               ContourInstersectionProcessorResult> {
public:
    struct Options {};

    explicit ContourIntersection(const Options& /*options*/ = {}) : Processor(ContourIntersectionProcessorOptions{}) {}

    /// The polygon and the contour may be in any coordinates, but both in the same.
    /// @throws std::invalid_argument  the polygon or the contour has no points
    ContourPosition operator()(Span<FloatPoint> polygon, Span<FloatPoint> contour) {
        const int32_t position = Value({0, detail::ContourOf("quarry::ContourIntersection: polygon", polygon),
                                        detail::ContourOf("quarry::ContourIntersection: contour", contour)})
                                     .Position;
        return static_cast<ContourPosition>(position);
    }
};

/// How the Hu moments of shapes are compared.
enum class ShapeMeasure : int32_t { I1 = 1, I2 = 2, I3 = 3 };

/// The other inputs of a ContourRate.
struct ContourTiming {
    int frameWidth = 0;       ///< pixels
    int frameHeight = 0;      ///< pixels
    double milliseconds = 0;  ///< between the contours; 0 gives infinity or not-a-number
    double defaultRate = 0;   ///< the result if a side of the frame is 0
};

/// How fast an object's shape changes, per second: the distance of two of its contours by their Hu moments.
class ContourRate : public detail::Processor<CreateCVContourRateCalculator, ContourRateMeasuringInputData,
                                             ContourRateMeasuringOutputData> {
public:
    struct Options {
        ShapeMeasure measure = ShapeMeasure::I1;
    };

    ContourRate() : ContourRate(Options{}) {}
    explicit ContourRate(const Options& options) : Processor({0, 0, static_cast<int32_t>(options.measure)}) {}

    /// @throws std::invalid_argument  a contour has no points, or a side of the frame does not fit 16 bits
    double operator()(Span<FloatPoint> current, Span<FloatPoint> previous, const ContourTiming& timing) {
        return Value({0, detail::ContourOf("quarry::ContourRate: current contour", current),
                      detail::ContourOf("quarry::ContourRate: previous contour", previous),
                      detail::Short("quarry::ContourTiming.frameWidth", timing.frameWidth),
                      detail::Short("quarry::ContourTiming.frameHeight", timing.frameHeight), timing.defaultRate,
                      timing.milliseconds})
            .Rate;
    }
};

/// The blobs of a frame that is black everywhere else: their outermost contours and centres of mass.
class ContourClusters : public detail::Processor<CreateCVClustererContours, ClustererData, ClustererResult> {
public:
    struct Options {
        float outlinePrecision = 1;    ///< above 0.5 contours are traced pixel by pixel, else as Teh-Chin chains
        float minContourAreaRate = 0;  ///< smallest blob that is kept, as a share of the frame's area
    };
    using Clusters = ListResult<ClustererResult>;  ///< elements of type Cluster; PointsOf gives a `Contour`'s points

    ContourClusters() : ContourClusters(Options{}) {}
    explicit ContourClusters(const Options& options)
        : Processor({0, options.outlinePrecision, options.minContourAreaRate}) {}

    /// @param frame  R, G, B
    /// @throws cv::Exception  the frame is empty
    Clusters operator()(const ImageArgument& frame) { return {handle(), ClustererData{0, frame.record()}}; }
};

}  // namespace quarry
