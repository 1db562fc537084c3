/// @file
/// Functions that add the classes of the operations to the module, one per family.
#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>

#include "Arrays.h"
#include "Locked.h"
#include "Pixels.h"
#include "Types.h"

namespace quarry::python {

void AddMeasures(py::module_& module);
void AddFrames(py::module_& module);
void AddContours(py::module_& module);
void AddDetectors(py::module_& module);
void AddUpdaters(py::module_& module);

/// The class of an operation.
template <class Operation>
py::class_<Locked<Operation>> Class(py::module_& module, const char* name, const char* doc) {
    const std::string refusal =
        std::string("a quarry.") + name + " cannot be pickled or copied; create one where it is used";
    return py::class_<Locked<Operation>>(module, name, doc)
        .def(
            "__reduce__", [refusal](const py::object& /*self*/) -> py::tuple { throw py::type_error(refusal); },
            "Refuses: the state of an object cannot be copied or moved to another process.");
}

/// The constructor of an operation without options.
template <class Operation>
auto Plain() {
    return py::init([] { return std::make_unique<Locked<Operation>>(); });
}

/// The `copy` argument of all functions that read pixels.
inline py::arg_v Copy() {
    return py::arg("copy") = false;
}

}  // namespace quarry::python
