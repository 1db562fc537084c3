/// @file
/// Arrays of Python as inputs of the library.
#pragma once

#include <pybind11/numpy.h>

#include <array>
#include <cstdint>

#include "Quarry/Host/Views.hpp"

namespace quarry::python {

namespace py = pybind11;

/// An array whose elements the library reads in place. It keeps the array alive during a call.
class Pixels {
public:
    /// @param name      of the argument, for messages
    /// @param channels  elements per pixel; 1 means an array of shape (height, width)
    /// @param copy      whether to copy elements that are not packed
    /// @throws std::invalid_argument  the array is of another type or shape, or not packed
    Pixels(const char* name, const py::array& given, const py::dtype& element, int channels, bool copy);

    int height() const { return static_cast<int>(packed.shape(0)); }
    int width() const { return static_cast<int>(packed.shape(1)); }
    const void* data() const { return packed.data(); }

private:
    py::array packed;
};

/// Whether a frame may have no pixels.
enum class Empty { Refused, Allowed };

/// A frame: (height, width, 3) of uint8.
class Frame : Pixels {
public:
    Frame(const char* name, const py::array& given, bool copy, Empty empty = Empty::Refused, uint64_t timestamp = 0);
    operator ImageView() const { return view; }

private:
    ImageView view;
};

/// A mask: (height, width) of uint8.
class MaskPixels : Pixels {
public:
    MaskPixels(const char* name, const py::array& given, bool copy);
    operator MaskView() const { return view; }

private:
    MaskView view;
};

/// A motion field: (height, width, 2) of float32.
class Field : Pixels {
public:
    Field(const char* name, const py::array& given, bool copy);
    operator FlowView() const { return view; }

private:
    FlowView view;
};

inline constexpr int kAligned = py::detail::npy_api::NPY_ARRAY_ALIGNED_;

/// Floats, converted by numpy from any type that it can convert. It keeps them alive during a call.
class Floats {
public:
    /// @throws std::invalid_argument  numpy cannot convert the object to floats
    Floats(const char* name, const py::object& given);

protected:
    py::array_t<float, py::array::c_style | kAligned | py::array::forcecast> packed;
};

/// Points: (N, 2).
class Points : Floats {
public:
    /// @throws std::invalid_argument  the array is of another shape, or not of numbers
    Points(const char* name, const py::object& given);
    operator Span<FloatPoint>() const;
};

/// Values: (N,).
class Values : Floats {
public:
    /// @throws std::invalid_argument  the array is of another shape, or not of numbers
    Values(const char* name, const py::object& given);
    operator Span<float>() const;
};

/// x, y, width, height.
inline RelRect RectOf(const std::array<float, 4>& given) {
    return {given[0], given[1], given[2], given[3]};
}

}  // namespace quarry::python
