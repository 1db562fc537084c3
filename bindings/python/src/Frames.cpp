// Operations that turn frames into a picture or a mask.
#include "Families.h"

namespace quarry::python {

namespace {

void AddPlain(py::module_& module) {
    Class<ImageSubtractor>(module, "ImageSubtractor", "Absolute difference of two frames, byte by byte.")
        .def(Plain<ImageSubtractor>())
        .def(
            "__call__",
            [](Locked<ImageSubtractor>& self, const py::array& first, const py::array& second, bool copy) {
                const Frame one("first", first, copy, Empty::Allowed);
                const Frame other("second", second, copy, Empty::Allowed);
                const auto picture = self.Give([&](auto& subtract) { return subtract(one, other); });
                return ArrayOf(picture.result.view(), picture.owner);
            },
            py::arg("first"), py::arg("second"), py::kw_only(), Copy(),
            R"(The difference: (height, width, 3) of uint8.

first, second: (height, width, 3) of uint8, both of the same size
copy: whether to copy frames that are not C-contiguous; they are refused otherwise
raises ValueError: a frame is of another type or shape, or their sizes differ)");

    Class<FastNlMeansDenoising>(module, "FastNlMeansDenoising", "A denoised copy of a frame, by non-local means.")
        .def(Plain<FastNlMeansDenoising>())
        .def(
            "__call__",
            [](Locked<FastNlMeansDenoising>& self, const py::array& frame, bool copy) {
                const Frame pixels("frame", frame, copy);
                const auto picture = self.Give([&](auto& denoise) { return denoise(pixels); });
                return ArrayOf(picture.result.view(), picture.owner);
            },
            py::arg("frame"), py::kw_only(), Copy(), R"(The denoised frame: (height, width, 3) of uint8.

frame: (height, width, 3) of uint8; each side 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape)");

    Class<FirePixels>(module, "FirePixels", "The flame region of a frame.")
        .def(Plain<FirePixels>())
        .def(
            "__call__",
            [](Locked<FirePixels>& self, const py::array& frame, bool copy) {
                const Frame pixels("frame", frame, copy);
                const auto flames = self.Give([&](auto& burning) { return burning(pixels); });
                return ArrayOf(flames.result.view(), flames.owner);
            },
            py::arg("frame"), py::kw_only(), Copy(), R"(The region: (height, width) of uint8, 255 flame and 0 none.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape, or has more than 2147483647 pixels)");
}

void AddRect(py::module_& module) {
    Class<RectExtractor>(module, "RectExtractor", "A turned rectangle cut out of a frame, upright.")
        .def(py::init([](Interpolation interpolation) {
                 return std::make_unique<Locked<RectExtractor>>(RectExtractor::Options{interpolation});
             }),
             py::kw_only(), py::arg_v("interpolation", Interpolation::Bilinear, "Interpolation.BILINEAR"),
             "interpolation: how pixels are interpolated")
        .def(
            "__call__",
            [](Locked<RectExtractor>& self, const py::array& frame, int centerX, int centerY, int width, int height,
               double degrees, bool copy) {
                const Frame pixels("frame", frame, copy);
                const TurnedRect rect = {centerX, centerY, width, height, degrees};
                const auto picture = self.Give([&](auto& extract) { return extract(pixels, rect); });
                return ArrayOf(picture.result.view(), picture.owner);
            },
            py::arg("frame"), py::kw_only(), py::arg("center_x"), py::arg("center_y"), py::arg("width"),
            py::arg("height"), py::arg("degrees") = 0.0, Copy(),
            R"(The rectangle's pixels, black where it leaves the frame: (height, width, 3) of uint8.

frame: (height, width, 3) of uint8; each side 1 or more
center_x, center_y: of the rectangle, in pixels
width, height: of the rectangle before it is turned about its centre, in pixels; 0 or more
degrees: angle of the rectangle; rounded to single precision
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape, a value of the rectangle does not fit 16 bits, or a side of
    it is negative
raises OpenCVError: a side of the frame has 32767 pixels or more)");
}

void AddTransforms(py::module_& module) {
    Class<SimilarityTransform>(module, "SimilarityTransform",
                               "Aligns a frame to a layout of five points, with the similarity transform that carries "
                               "the source points onto the destination points with the least squared error.")
        .def(py::init([](int width, int height) {
                 return std::make_unique<Locked<SimilarityTransform>>(SimilarityTransform::Options{width, height});
             }),
             py::kw_only(), py::arg("width") = SimilarityTransform::Options{}.width,
             py::arg("height") = SimilarityTransform::Options{}.height, R"(width, height: of the output, in pixels

raises ValueError: a side is below 1)")
        .def(
            "__call__",
            [](Locked<SimilarityTransform>& self, const py::array& frame, const py::object& source,
               const py::object& destination, bool copy) {
                const Frame pixels("frame", frame, copy);
                const Points from("source", source);
                const Points to("destination", destination);
                const auto picture = self.Give([&](auto& align) { return align(pixels, from, to); });
                return ArrayOf(picture.result.view(), picture.owner);
            },
            py::arg("frame"), py::arg("source"), py::arg("destination"), py::kw_only(), Copy(),
            R"(The aligned frame, black where it maps outside the given one: (height, width, 3) of uint8.

frame: (height, width, 3) of uint8; each side 1 or more
source: (5, 2) of float32, other types are converted: x, y in pixels of the frame
destination: (5, 2) of float32, other types are converted: x, y in pixels of the output
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: an array is of another type or shape, or there are not five points of each
raises OpenCVError: the frame is too large to warp)");

    Class<RotationTransform>(module, "RotationTransform",
                             "Turns a frame about its centre, and scales it, on a canvas that holds the whole turned "
                             "frame; then resizes the canvas to the frame's size. Uncovered pixels are black.")
        .def(py::init([](int width, int height) {
                 return std::make_unique<Locked<RotationTransform>>(RotationTransform::Options{width, height});
             }),
             py::kw_only(), py::arg("width"), py::arg("height"), R"(width, height: of every frame, in pixels

raises ValueError: a side is below 1)")
        .def(
            "__call__",
            [](Locked<RotationTransform>& self, const py::array& frame, double degrees, double scale, bool copy) {
                const Frame pixels("frame", frame, copy);
                const auto picture = self.Give([&](auto& rotate) { return rotate(pixels, degrees, scale); });
                return ArrayOf(picture.result.view(), picture.owner);
            },
            py::arg("frame"), py::arg("degrees"), py::arg("scale") = 1.0, py::kw_only(), Copy(),
            R"(The turned frame: (height, width, 3) of uint8.

frame: (height, width, 3) of uint8, of the options' size
degrees: positive turns counter-clockwise
scale: of the picture on its canvas; the canvas keeps its size
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type, shape or size)");
}

}  // namespace

void AddFrames(py::module_& module) {
    AddPlain(module);
    AddRect(module);
    AddTransforms(module);
}

}  // namespace quarry::python
