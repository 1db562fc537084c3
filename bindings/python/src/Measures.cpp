// Operations that measure: sharpness, similarity, colours, motion across a line.
#include <array>
#include <cstddef>

#include "Families.h"

namespace quarry::python {

namespace {

void AddSharpness(py::module_& module) {
    Class<VarianceOfLaplacian>(module, "VarianceOfLaplacian",
                               "Sharpness of a frame: the variance of its Laplacian, in squared grey levels.")
        .def(Plain<VarianceOfLaplacian>())
        .def(
            "__call__",
            [](Locked<VarianceOfLaplacian>& self, const py::array& frame, bool copy) {
                const Frame pixels("frame", frame, copy);
                return self.Run([&](auto& sharpness) { return sharpness(pixels); });
            },
            py::arg("frame"), py::kw_only(), Copy(), R"(The sharpness of a frame.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape)");

    Class<FaceVarianceOfLaplacian>(
        module, "FaceVarianceOfLaplacian",
        "Sharpness of a face: the variance of the Laplacian of a frame that is black outside an ellipse.")
        .def(Plain<FaceVarianceOfLaplacian>())
        .def(
            "__call__",
            [](Locked<FaceVarianceOfLaplacian>& self, const py::array& frame, int centerX, int centerY, int halfWidth,
               int halfHeight, bool copy) {
                const Frame pixels("frame", frame, copy);
                const FaceEllipse face = {centerX, centerY, halfWidth, halfHeight};
                return self.Run([&](auto& sharpness) { return sharpness(pixels, face); });
            },
            py::arg("frame"), py::kw_only(), py::arg("center_x"), py::arg("center_y"), py::arg("half_width"),
            py::arg("half_height"), Copy(), R"(The sharpness of a face, in squared grey levels.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
center_x, center_y, half_width, half_height: centre and half-axes of the ellipse around the face, in pixels; the
    half-axes are 0 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape, or a value of the ellipse does not fit 16 bits
raises OpenCVError: a half-axis is negative)");
}

void AddSimilarity(py::module_& module) {
    Class<CosineSimilarity>(module, "CosineSimilarity", "Cosine of the angle between two embeddings of 512 values.")
        .def(Plain<CosineSimilarity>())
        .def(
            "__call__",
            [](Locked<CosineSimilarity>& self, const py::object& first, const py::object& second) {
                const Values one("first", first);
                const Values other("second", second);
                return self.Run([&](auto& similarity) { return similarity(one, other); });
            },
            py::arg("first"), py::arg("second"),
            R"(The cosine, -1 to 1 apart from rounding; not-a-number if all values of an embedding are 0.

first, second: (512,) of float32; other types are converted
raises ValueError: an embedding does not have 512 values)");

    Class<ColorComparison>(module, "ColorComparison", "How alike the colours of one region are in two frames.")
        .def(py::init([](HistogramMeasure measure) {
                 return std::make_unique<Locked<ColorComparison>>(ColorComparison::Options{measure});
             }),
             py::kw_only(), py::arg_v("measure", HistogramMeasure::Correlation, "HistogramMeasure.CORRELATION"),
             "measure: how histograms of hue and saturation are compared")
        .def(
            "__call__",
            [](Locked<ColorComparison>& self, const py::array& first, const py::array& second,
               const std::array<float, 4>& area, bool copy) {
                const Frame one("first", first, copy);
                const Frame other("second", second, copy);
                return self.Run([&](auto& compare) { return compare(one, other, RectOf(area)); });
            },
            py::arg("first"), py::arg("second"), py::kw_only(), py::arg("area") = std::array{0.0F, 0.0F, 1.0F, 1.0F},
            Copy(), R"(The similarity, by the measure of the options.

first, second: (height, width, 3) of uint8, B, G, R; each side 1 or more
area: x, y, width, height in fractions of the first frame; it covers the same pixels in both frames
copy: whether to copy frames that are not C-contiguous; they are refused otherwise
raises ValueError: a frame is of another type or shape
raises OpenCVError: the area is empty or does not lie inside both frames)");
}

void AddLine(py::module_& module) {
    Class<OpticalFlowLine>(module, "OpticalFlowLine", "The motion across a straight line of a motion field.")
        .def(Plain<OpticalFlowLine>())
        .def(
            "__call__",
            [](Locked<OpticalFlowLine>& self, const py::array& field, const std::array<float, 2>& start,
               const std::array<float, 2>& end, int valuesCount, bool copy) {
                const Field motion("field", field, copy);
                const RelLine line = {{start[0], start[1]}, {end[0], end[1]}};
                const auto values = self.Give([&](auto& across) { return across(motion, line, valuesCount); });
                return ArrayOver(values.result.data(), {static_cast<py::ssize_t>(values.result.size())}, values.owner);
            },
            py::arg("field"), py::kw_only(), py::arg("start"), py::arg("end"), py::arg("values_count"), Copy(),
            R"(The motion in pixels, positive to the line's right as seen from its start: (values_count,) of float32.

field: (height, width, 2) of float32: displacements to the right and down, in pixels, as from DenseOpticalFlow.result
start, end: x, y of the line's ends, in fractions of the field's width and height
values_count: number of values, from start to end; 0 or more
copy: whether to copy a field that is not C-contiguous; it is refused otherwise
raises ValueError: the field is of another type or shape, or values_count is negative)");
}

void AddClothing(py::module_& module) {
    Class<ClothingColors>(module, "ClothingColors",
                          "The two dominant colours of a person's upper body, and the two of the legs.")
        .def(Plain<ClothingColors>())
        .def(
            "__call__",
            [](Locked<ClothingColors>& self, const py::array& frame, const py::object& keypoints, bool copy) {
                const Frame pixels("frame", frame, copy);
                const Points body("keypoints", keypoints);
                const auto colors = self.Give([&](auto& extract) { return extract(pixels, body); });
                const float* const first = colors.result.data();
                constexpr std::size_t kPart = 6;
                return Tuple("ClothingColorsResult", ArrayOver(first, {2, 3}, colors.owner),
                             ArrayOver(first + kPart, {2, 3}, colors.owner));
            },
            py::arg("frame"), py::arg("keypoints"), py::kw_only(), Copy(),
            R"(The colours, as a ClothingColorsResult: rows of red, green, blue, each 0 to 1.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
keypoints: (17, 2) of float32, other types are converted: x, y in fractions of the frame's size, in the COCO order;
    further rows are not read
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: an array is of another type or shape, or there are fewer than 17 keypoints
raises OpenCVError: the torso or the legs cover fewer than two pixels)");
}

}  // namespace

void AddMeasures(py::module_& module) {
    AddSharpness(module);
    AddSimilarity(module);
    AddLine(module);
    AddClothing(module);
}

}  // namespace quarry::python
