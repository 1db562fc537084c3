#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

constexpr const char* kPointsOnly = "only Points and Count are read";

Operation ObjectContour() {
    return {
        "object-contour",
        "The outline of one object in a mask, searched inside a rectangle around it",
        Kind::Processor,
        "CreateCVContourCalculator",
        "contours",
        "Suzuki and Abe, 1985",
        QUARRY_RECORD(ContourCalcingOptions, "How contours are traced and which one is chosen.",
                      QUARRY_FIELD(ContourCalcingOptions, Header, kHeader),
                      QUARRY_FIELD(ContourCalcingOptions, Reserved, kNotRead),
                      QUARRY_FIELD(ContourCalcingOptions, ApproximationMethod,
                                   "1 every border pixel, 2 ends of straight runs, 3 and 4 Teh-Chin chains (L1, "
                                   "k-cosine)"),
                      QUARRY_FIELD(ContourCalcingOptions, SelectionMode,
                                   "0 largest area, 1 largest diagonal of the bounding box, any other chooses none")),
        QUARRY_RECORD(ContourCalcingInputData, "A mask of the whole frame and the rectangle around one object in it.",
                      QUARRY_FIELD(ContourCalcingInputData, Header, kHeader),
                      QUARRY_FIELD(ContourCalcingInputData, ObjectMask, "non-zero bytes are foreground"),
                      QUARRY_FIELD(ContourCalcingInputData, ObjectRect, "inside the mask, relative to it")),
        QUARRY_RECORD(ContourResult, "The chosen contour; give it back with DisposeResult, also without points.",
                      QUARRY_FIELD(ContourResult, Status, kStatus),
                      QUARRY_FIELD(ContourResult, Contour, "relative to the mask; no points: nothing was found")),
        {kWrongFrame,
         {"cv::Exception",
          "the mask is empty or its data null, the rectangle does not lie inside the mask, or ApproximationMethod is "
          "unknown or 0"}}};
}

Operation OccupancyGrid() {
    return {
        "occupancy-grid",
        "A grid of the cells that objects occupy in a frame that is black everywhere else",
        Kind::Processor,
        "CreateCVContourMaskProcessor",
        "occupancy",
        "",
        QUARRY_RECORD(ContourMaskProcessorOptions, "What makes a cell occupied.",
                      QUARRY_FIELD(ContourMaskProcessorOptions, Header, kHeader),
                      QUARRY_FIELD(ContourMaskProcessorOptions, CellFillRate,
                                   "0..1: more than this share of the cell's pixels lies inside kept contours; above "
                                   "0.5 contours are traced pixel by pixel"),
                      QUARRY_FIELD(ContourMaskProcessorOptions, MinContourAreaRate,
                                   "0..1: smallest contour that is kept, share of the frame's area")),
        QUARRY_RECORD(ContourMaskProcessorData, "A frame and the size of the grid over it.",
                      QUARRY_FIELD(ContourMaskProcessorData, Header, kHeader),
                      QUARRY_FIELD(ContourMaskProcessorData, Image, kRgb),
                      QUARRY_FIELD(ContourMaskProcessorData, GridWidth, "columns, 1 or more"),
                      QUARRY_FIELD(ContourMaskProcessorData, GridHeight, "rows, 1 or more")),
        QUARRY_RECORD(ContourMaskProcessorResult,
                      "The grid. DisposeResult leaves it in place: DestroyContourMaskProcessorResult releases it.",
                      QUARRY_FIELD(ContourMaskProcessorResult, Status, kStatus),
                      QUARRY_FIELD(ContourMaskProcessorResult, Mask,
                                   "GridWidth x GridHeight bytes, row by row: 1 occupied, 0 free")),
        {kWrongFrame,
         {"std::invalid_argument", "GridWidth or GridHeight is below 1, or their product above 2147483647"},
         kNoFrame}};
}

Operation ContourClusters() {
    return {"contour-clusters",
            "The blobs of a frame that is black everywhere else: outlines with centres of mass",
            Kind::Processor,
            "CreateCVClustererContours",
            "clusters",
            "",
            QUARRY_RECORD(ClustererOptions, "How blobs are traced and which are kept.",
                          QUARRY_FIELD(ClustererOptions, Header, kHeader),
                          QUARRY_FIELD(ClustererOptions, OutlinePrecision,
                                       "above 0.5 every border pixel is kept, else Teh-Chin chains"),
                          QUARRY_FIELD(ClustererOptions, MinContourAreaRate,
                                       "0..1: smallest blob that is kept, share of the frame's area")),
            QUARRY_RECORD(ClustererData, "A frame with blobs.", QUARRY_FIELD(ClustererData, Header, kHeader),
                          QUARRY_FIELD(ClustererData, Image, kRgb)),
            QUARRY_RECORD(ClustererResult, "The clusters; give them back with DisposeResult.",
                          QUARRY_FIELD(ClustererResult, Unwritten, "left as it is"),
                          QUARRY_FIELD(ClustererResult, Clusters, "Count clusters, in the order they are found"),
                          QUARRY_FIELD(ClustererResult, Count, "number of clusters")),
            {kWrongFrame, kNoFrame}};
}

Operation ContourPosition() {
    return {"contour-position",
            "Where a contour lies with respect to a polygon: inside, outside or across its border",
            Kind::Processor,
            "CreateCVContourIntersectionProcessor",
            "inside",
            "",
            QUARRY_RECORD(ContourIntersectionProcessorOptions, "Holds nothing that is read.",
                          QUARRY_FIELD(ContourIntersectionProcessorOptions, Header, kHeader),
                          QUARRY_FIELD(ContourIntersectionProcessorOptions, Reserved, kNotRead)),
            QUARRY_RECORD(ContourIntersectionProcessorData,
                          "A polygon and the contour to place, both in the same coordinates.",
                          QUARRY_FIELD(ContourIntersectionProcessorData, Header, kHeader),
                          QUARRY_FIELD(ContourIntersectionProcessorData, Polygon, kPointsOnly),
                          QUARRY_FIELD(ContourIntersectionProcessorData, TestContour,
                                       "at least one point; only Points and Count are read")),
            QUARRY_RECORD(ContourInstersectionProcessorResult, "Where the contour lies; holds no buffer.",
                          QUARRY_FIELD(ContourInstersectionProcessorResult, Status, kStatus),
                          QUARRY_FIELD(ContourInstersectionProcessorResult, Position,
                                       "1 inside, -1 outside, 0 across the border; 1 when the first point is on it")),
            {kWrongFrame,
             {"std::invalid_argument", "TestContour has no points, or Points is null where some are counted"},
             {"cv::Exception", "OpenCV refuses the polygon, an empty one included"}}};
}

Operation ShapeChangeRate() {
    return {"shape-change-rate",
            "How fast an object's shape changes: the distance of two of its contours by Hu moments, per second",
            Kind::Processor,
            "CreateCVContourRateCalculator",
            "shape-rate",
            "Hu, 1962",
            QUARRY_RECORD(ContourRateMeasuringOptions, "How shapes are compared.",
                          QUARRY_FIELD(ContourRateMeasuringOptions, Header, kHeader),
                          QUARRY_FIELD(ContourRateMeasuringOptions, Reserved, kNotRead),
                          QUARRY_FIELD(ContourRateMeasuringOptions, MatchMethod,
                                       "1, 2 or 3: I1, I2, I3 of the comparison of Hu moments")),
            QUARRY_RECORD(ContourRateMeasuringInputData, "Two contours of one object, some time apart.",
                          QUARRY_FIELD(ContourRateMeasuringInputData, Header, kHeader),
                          QUARRY_FIELD(ContourRateMeasuringInputData, CurrentContour, kPointsOnly),
                          QUARRY_FIELD(ContourRateMeasuringInputData, PreviousContour, kPointsOnly),
                          QUARRY_FIELD(ContourRateMeasuringInputData, FrameWidth, "pixels"),
                          QUARRY_FIELD(ContourRateMeasuringInputData, FrameHeight, "pixels"),
                          QUARRY_FIELD(ContourRateMeasuringInputData, DefaultRate,
                                       "given back as it is when FrameWidth or FrameHeight is 0"),
                          QUARRY_FIELD(ContourRateMeasuringInputData, Interval, "milliseconds between the contours")),
            QUARRY_RECORD(ContourRateMeasuringOutputData, "The rate; holds no buffer.",
                          QUARRY_FIELD(ContourRateMeasuringOutputData, Status, kStatus),
                          QUARRY_FIELD(ContourRateMeasuringOutputData, Rate,
                                       "shape change per second; infinite or not a number at an Interval of 0")),
            {kWrongFrame,
             {"abort", "a contour counts 0 points: the process ends"},
             {"std::bad_alloc", "a contour counts fewer than 0 points"},
             {"std::invalid_argument", "Points is null where some are counted"},
             {"cv::Exception", "MatchMethod is unknown"}}};
}

}  // namespace

std::vector<Operation> ContourOperations() {
    return {ObjectContour(), OccupancyGrid(), ContourClusters(), ContourPosition(), ShapeChangeRate()};
}

}  // namespace quarry::command
