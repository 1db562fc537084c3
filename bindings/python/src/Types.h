/// @file
/// The enumerations and tuples of the package's Python part.
#pragma once

#include <pybind11/pybind11.h>

#include <type_traits>
#include <utility>

#include "Quarry/Host.hpp"

namespace quarry::python {

namespace py = pybind11;

/// A class of quarry/_types.py.
inline py::object Type(const char* name) {
    return py::module_::import("quarry._types").attr(name);
}

/// A named tuple of quarry/_types.py.
template <class... Fields>
py::object Tuple(const char* name, Fields&&... fields) {
    return Type(name)(std::forward<Fields>(fields)...);
}

inline py::object RectTuple(const RelRect& rect) {
    return Tuple("RelRect", rect.X, rect.Y, rect.Width, rect.Height);
}

/// What an enumeration is called in Python.
inline constexpr auto NameOf(CascadeMode /*of*/) {
    return py::detail::const_name("CascadeMode");
}
inline constexpr auto NameOf(ContourPosition /*of*/) {
    return py::detail::const_name("ContourPosition");
}
inline constexpr auto NameOf(HistogramMeasure /*of*/) {
    return py::detail::const_name("HistogramMeasure");
}
inline constexpr auto NameOf(Interpolation /*of*/) {
    return py::detail::const_name("Interpolation");
}
inline constexpr auto NameOf(Selection /*of*/) {
    return py::detail::const_name("Selection");
}
inline constexpr auto NameOf(ShapeMeasure /*of*/) {
    return py::detail::const_name("ShapeMeasure");
}
inline constexpr auto NameOf(Tracing /*of*/) {
    return py::detail::const_name("Tracing");
}
inline constexpr auto NameOf(TrackerMode /*of*/) {
    return py::detail::const_name("TrackerMode");
}
inline constexpr auto NameOf(UpdaterState /*of*/) {
    return py::detail::const_name("State");
}

/// Converts between an enumeration and its class in quarry/_types.py, whose members have the same numbers.
template <class Enum>
struct EnumCaster {
    PYBIND11_TYPE_CASTER(Enum, NameOf(Enum{}));

    bool load(py::handle given, bool /*convert*/) {
        if (!py::isinstance(given, Type(name.text))) return false;
        value = static_cast<Enum>(given.cast<int>());
        return true;
    }
    static py::handle cast(Enum given, py::return_value_policy /*policy*/, py::handle /*parent*/) {
        return Type(name.text)(static_cast<int>(given)).release();
    }
};

}  // namespace quarry::python

namespace pybind11::detail {

template <class Enum>
struct type_caster<Enum, std::void_t<decltype(quarry::python::NameOf(Enum{}))>> : quarry::python::EnumCaster<Enum> {};

}  // namespace pybind11::detail
