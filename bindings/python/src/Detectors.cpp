// Operations that find objects and people.
#include <pybind11/stl/filesystem.h>

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "Families.h"

namespace quarry::python {

namespace {

void AddCascade(py::module_& module) {
    const CascadeDetector::Options defaults;
    Class<CascadeDetector>(module, "CascadeDetector", "Finds objects of one kind with a cascade of boosted features.")
        .def(py::init([](const std::filesystem::path& modelPath, double minSide, double maxSide, CascadeMode mode) {
                 return std::make_unique<Locked<CascadeDetector>>(
                     CascadeDetector::Options{modelPath.string(), minSide, maxSide, mode});
             }),
             py::kw_only(), py::arg("model_path"), py::arg("min_side") = defaults.minSide,
             py::arg("max_side") = defaults.maxSide, py::arg_v("mode", defaults.mode, "CascadeMode.CAREFUL"),
             R"(model_path: an OpenCV cascade file
min_side, max_side: smallest and largest side of an object in pixels; negative, or infinity for the largest: no limit
mode: how thoroughly it searches

raises ValueError: model_path is empty or names no readable file, or a limit is not a number
raises OpenCVError: OpenCV cannot parse the file)")
        .def(
            "__call__",
            [](Locked<CascadeDetector>& self, const py::array& frame, const std::array<float, 4>& area, bool copy) {
                const Frame pixels("frame", frame, copy);
                const auto detections = self.Give([&](auto& detect) { return detect(pixels, RectOf(area)); });
                py::list found;
                for (const Response& response : detections.result) found.append(RectTuple(response.Rect));
                return found;
            },
            py::arg("frame"), py::kw_only(), py::arg("area") = std::array{0.0F, 0.0F, 1.0F, 1.0F}, Copy(),
            R"(The objects, a list of RelRect in fractions of the area, not of the frame.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
area: the area to search: x, y, width, height in fractions of the frame
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape
raises OpenCVError: the area does not lie inside the frame or has no pixels, or the file holds no cascade)");
}

void AddPeople(py::module_& module) {
    const PeopleDetector::Options defaults;
    Class<PeopleDetector>(module, "PeopleDetector", "Finds standing people with histograms of oriented gradients.")
        .def(py::init([](float sensitivity, double minHeight, double maxHeight) {
                 return std::make_unique<Locked<PeopleDetector>>(
                     PeopleDetector::Options{sensitivity, minHeight, maxHeight});
             }),
             py::kw_only(), py::arg("sensitivity") = defaults.sensitivity, py::arg("min_height") = defaults.minHeight,
             py::arg("max_height") = defaults.maxHeight,
             R"(sensitivity: 0 to 1; a higher value searches finer and slower
min_height, max_height: limits of a person's height, in fractions of the frame's height; the lower limit is at least
    128 pixels, so that nobody is found if max_height is below that; a max_height of infinity is no limit

raises ValueError: sensitivity is not in 0 to 1, or a limit is not a number)")
        .def(
            "__call__",
            [](Locked<PeopleDetector>& self, const py::array& frame,
               const std::optional<std::vector<std::array<float, 4>>>& areas, bool copy) {
                const Frame pixels("frame", frame, copy);
                std::vector<RelRect> rects;
                if (areas) {
                    for (const auto& area : *areas) rects.push_back(RectOf(area));
                }
                const auto detections =
                    self.Give([&](auto& detect) { return areas ? detect(pixels, rects) : detect(pixels); });
                py::list found;
                for (const Response& response : detections.result) {
                    found.append(Tuple("Person", RectTuple(response.Rect), response.Weight));
                }
                return found;
            },
            py::arg("frame"), py::kw_only(), py::arg("areas") = py::none(), Copy(),
            R"(The people, a list of Person, relative to the frame.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
areas: the areas to search, one by one: each x, y, width, height in fractions of the frame; None: the whole frame. An
    area no wider than 64 pixels or no higher than min_height is skipped
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape
raises OpenCVError: an area that is searched does not lie inside the frame)");
}

}  // namespace

void AddDetectors(py::module_& module) {
    AddCascade(module);
    AddPeople(module);
}

}  // namespace quarry::python
