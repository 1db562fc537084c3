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

/// The name of an enumeration in Python; null for all other types.
template <class Type>
inline constexpr auto kNameOf = nullptr;
template <>
inline constexpr auto kNameOf<CascadeMode> = py::detail::const_name("CascadeMode");
template <>
inline constexpr auto kNameOf<ContourPosition> = py::detail::const_name("ContourPosition");
template <>
inline constexpr auto kNameOf<HistogramMeasure> = py::detail::const_name("HistogramMeasure");
template <>
inline constexpr auto kNameOf<Interpolation> = py::detail::const_name("Interpolation");
template <>
inline constexpr auto kNameOf<Selection> = py::detail::const_name("Selection");
template <>
inline constexpr auto kNameOf<ShapeMeasure> = py::detail::const_name("ShapeMeasure");
template <>
inline constexpr auto kNameOf<Tracing> = py::detail::const_name("Tracing");
template <>
inline constexpr auto kNameOf<TrackerMode> = py::detail::const_name("TrackerMode");
template <>
inline constexpr auto kNameOf<UpdaterState> = py::detail::const_name("State");

/// Converts between an enumeration and its class in quarry/_types.py, whose members have the same numbers.
template <class Enum>
struct EnumCaster {
    PYBIND11_TYPE_CASTER(Enum, kNameOf<Enum>);

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
struct type_caster<Enum, std::enable_if_t<!std::is_null_pointer_v<decltype(quarry::python::kNameOf<Enum>)>>>
    : quarry::python::EnumCaster<Enum> {};

}  // namespace pybind11::detail
