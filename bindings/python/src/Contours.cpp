// Operations that find, locate and compare contours.
#include <array>

#include "Families.h"

namespace quarry::python {

namespace {

void AddObject(py::module_& module) {
    Class<ObjectContour>(module, "ObjectContour", "The outline of one object in a mask of the whole frame.")
        .def(py::init([](Tracing tracing, Selection selection) {
                 return std::make_unique<Locked<ObjectContour>>(ObjectContour::Options{tracing, selection});
             }),
             py::kw_only(), py::arg_v("tracing", Tracing::RunEnds, "Tracing.RUN_ENDS"),
             py::arg_v("selection", Selection::LargestArea, "Selection.LARGEST_AREA"),
             R"(tracing: how contours are traced
selection: which of several contours is selected)")
        .def(
            "__call__",
            [](Locked<ObjectContour>& self, const py::array& mask, const std::array<float, 4>& area, bool copy) {
                const MaskPixels pixels("mask", mask, copy);
                const auto outline = self.Give([&](auto& contour) { return contour(pixels, RectOf(area)); });
                return Tuple("Outline", ArrayOf(Span<FloatPoint>(outline.result), outline.owner), outline.result.area(),
                             outline.result.perimeter());
            },
            py::arg("mask"), py::arg("area"), py::kw_only(), Copy(),
            R"(The outline, as an Outline; it has no points if nothing was found.

mask: (height, width) of uint8; non-zero bytes are foreground
area: rectangle around the object: x, y, width, height in fractions of the mask
copy: whether to copy a mask that is not C-contiguous; it is refused otherwise
raises ValueError: the mask is of another type or shape
raises OpenCVError: the mask is empty, or the area does not lie inside it)");
}

void AddBlobs(py::module_& module) {
    Class<ContourGrid>(module, "ContourGrid",
                       "The grid cells that objects occupy, in a frame that is black everywhere else.")
        .def(py::init([](float cellFillRate, float minContourAreaRate) {
                 return std::make_unique<Locked<ContourGrid>>(ContourGrid::Options{cellFillRate, minContourAreaRate});
             }),
             py::kw_only(), py::arg("cell_fill_rate") = ContourGrid::Options{}.cellFillRate,
             py::arg("min_contour_area_rate") = ContourGrid::Options{}.minContourAreaRate,
             R"(cell_fill_rate: a cell is occupied if more than this share of its pixels lies inside kept contours;
    above 0.5 contours are traced pixel by pixel
min_contour_area_rate: smallest contour that is kept, as a share of the frame's area)")
        .def(
            "__call__",
            [](Locked<ContourGrid>& self, const py::array& frame, int width, int height, bool copy) {
                const Frame pixels("frame", frame, copy);
                const GridSize size = {width, height};
                const auto cells = self.Give([&](auto& grid) { return grid(pixels, size); });
                return ArrayOf(cells.result.view(), cells.owner);
            },
            py::arg("frame"), py::kw_only(), py::arg("width"), py::arg("height"), Copy(),
            R"(The grid: (height, width) of uint8, 1 occupied and 0 free.

frame: (height, width, 3) of uint8, R, G, B; each side 1 or more
width, height: columns and rows of the grid; each 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape, a side of the grid is below 1, or the grid has more than
    2147483647 cells)");

    Class<ContourClusters>(module, "ContourClusters",
                           "The blobs of a frame that is black everywhere else: outermost contours, centres of mass.")
        .def(py::init([](float outlinePrecision, float minContourAreaRate) {
                 return std::make_unique<Locked<ContourClusters>>(
                     ContourClusters::Options{outlinePrecision, minContourAreaRate});
             }),
             py::kw_only(), py::arg("outline_precision") = ContourClusters::Options{}.outlinePrecision,
             py::arg("min_contour_area_rate") = ContourClusters::Options{}.minContourAreaRate,
             R"(outline_precision: above 0.5 contours are traced pixel by pixel, else as Teh-Chin chains
min_contour_area_rate: smallest blob that is kept, as a share of the frame's area)")
        .def(
            "__call__",
            [](Locked<ContourClusters>& self, const py::array& frame, bool copy) {
                const Frame pixels("frame", frame, copy);
                const auto clusters = self.Give([&](auto& find) { return find(pixels); });
                py::list found;
                for (const Cluster& cluster : clusters.result) {
                    const Contour& contour = *cluster.Contour;
                    found.append(Tuple("Cluster", ArrayOf(PointsOf(contour), clusters.owner), contour.Area,
                                       contour.Perimeter, cluster.CenterX, cluster.CenterY));
                }
                return found;
            },
            py::arg("frame"), py::kw_only(), Copy(), R"(The blobs, a list of Cluster.

frame: (height, width, 3) of uint8, R, G, B; each side 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape)");
}

void AddRelations(py::module_& module) {
    Class<ContourIntersection>(module, "ContourIntersection", "Where a contour lies with respect to a polygon.")
        .def(Plain<ContourIntersection>())
        .def(
            "__call__",
            [](Locked<ContourIntersection>& self, const py::object& polygon, const py::object& contour) {
                const Points zone("polygon", polygon);
                const Points points("contour", contour);
                return self.Run([&](auto& place) { return place(zone, points); });
            },
            py::arg("polygon"), py::arg("contour"), R"(The position, as a ContourPosition.

polygon, contour: (N, 2) of float32, other types are converted: x, y in any coordinates, but both in the same
raises ValueError: an array is of another shape, or has no points)");

    Class<ContourRate>(module, "ContourRate",
                       "How fast an object's shape changes: the distance of two of its contours by their Hu moments.")
        .def(py::init([](ShapeMeasure measure) {
                 return std::make_unique<Locked<ContourRate>>(ContourRate::Options{measure});
             }),
             py::kw_only(), py::arg_v("measure", ShapeMeasure::I1, "ShapeMeasure.I1"),
             "measure: how the Hu moments are compared")
        .def(
            "__call__",
            [](Locked<ContourRate>& self, const py::object& current, const py::object& previous, int frameWidth,
               int frameHeight, double milliseconds, double defaultRate) {
                const Points now("current", current);
                const Points before("previous", previous);
                const ContourTiming timing = {frameWidth, frameHeight, milliseconds, defaultRate};
                return self.Run([&](auto& rate) { return rate(now, before, timing); });
            },
            py::arg("current"), py::arg("previous"), py::kw_only(), py::arg("frame_width"), py::arg("frame_height"),
            py::arg("milliseconds"), py::arg("default_rate") = 0.0, R"(The rate, per second.

current, previous: (N, 2) of float32, other types are converted: x, y in fractions of the frame's size
frame_width, frame_height: in pixels
milliseconds: time between the contours; 0 gives infinity or not-a-number
default_rate: the result if a side of the frame is 0
raises ValueError: an array is of another shape or has no points, or a side of the frame does not fit 16 bits)");
}

}  // namespace

void AddContours(py::module_& module) {
    AddObject(module);
    AddBlobs(module);
    AddRelations(module);
}

}  // namespace quarry::python
