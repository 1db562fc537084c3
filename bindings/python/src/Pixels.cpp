#include "Pixels.h"

#include <limits>
#include <stdexcept>
#include <string>

namespace quarry::python {

namespace {

constexpr int kWhole = py::array::c_style | kAligned;

std::string TextOf(const py::object& object) {
    return py::str(object);
}

std::string ShapeOf(const py::array& array) {
    return TextOf(array.attr("shape"));
}

[[noreturn]] void RefuseArray(const char* name, const std::string& given, const std::string& wanted) {
    throw std::invalid_argument(std::string(name) + ": " + given + "; " + wanted);
}

void CheckShape(const char* name, const py::array& array, int channels) {
    const bool isFlat = channels == 1;
    if (array.ndim() == (isFlat ? 2 : 3) && (isFlat || array.shape(2) == channels)) return;
    RefuseArray(name, "the shape is " + ShapeOf(array),
                "(height, width" + (isFlat ? "" : ", " + std::to_string(channels)) + ") is needed");
}

void CheckSides(const char* name, const py::array& array) {
    constexpr auto kMost = std::numeric_limits<int>::max();
    if (array.shape(0) <= kMost && array.shape(1) <= kMost) return;
    RefuseArray(name, "the shape is " + ShapeOf(array), "at most " + std::to_string(kMost) + " is allowed for a side");
}

py::array Packed(const char* name, const py::array& array, bool copy) {
    if ((array.flags() & kWhole) == kWhole) return array;
    // numpy.array makes a plain array, while the `copy` method of a subclass may do anything.
    if (copy) return py::module_::import("numpy").attr("array")(array, py::arg("order") = "C");
    RefuseArray(name, "an array with strides " + TextOf(array.attr("strides")) + " is given",
                "one that is C-contiguous and aligned is needed, or copy=True");
}

}  // namespace

Pixels::Pixels(const char* name, const py::array& given, const py::dtype& element, int channels, bool copy) {
    if (!given.dtype().is(element) && !given.dtype().equal(element)) {
        RefuseArray(name, "an array of " + TextOf(given.dtype()) + " is given", TextOf(element) + " is needed");
    }
    CheckShape(name, given, channels);
    CheckSides(name, given);
    packed = Packed(name, given, copy);
}

Frame::Frame(const char* name, const py::array& given, bool copy, Empty empty, uint64_t timestamp)
    : Pixels(name, given, py::dtype::of<uint8_t>(), 3, copy),
      view(static_cast<const uint8_t*>(data()), width(), height(), timestamp) {
    if (empty == Empty::Refused && given.size() == 0) {
        RefuseArray(name, "the shape is " + ShapeOf(given), "each side must be 1 or more");
    }
}

MaskPixels::MaskPixels(const char* name, const py::array& given, bool copy)
    : Pixels(name, given, py::dtype::of<uint8_t>(), 1, copy),
      view(static_cast<const uint8_t*>(data()), width(), height()) {}

Field::Field(const char* name, const py::array& given, bool copy)
    : Pixels(name, given, py::dtype::of<float>(), 2, copy),
      view(static_cast<const AbsVector*>(data()), width(), height()) {}

Floats::Floats(const char* name, const py::object& given) try : packed(given) {
} catch (const py::error_already_set& refused) {
    if (!refused.matches(PyExc_TypeError) && !refused.matches(PyExc_ValueError)) throw;  // an interrupt, for example
    RefuseArray(name, TextOf(refused.value()), "numbers are needed");
}

Points::Points(const char* name, const py::object& given) : Floats(name, given) {
    if (packed.ndim() != 2 || packed.shape(1) != 2) {
        RefuseArray(name, "the shape is " + ShapeOf(packed), "(N, 2) is needed");
    }
}

Points::operator Span<FloatPoint>() const {
    return {reinterpret_cast<const FloatPoint*>(packed.data()), static_cast<std::size_t>(packed.shape(0))};
}

Values::Values(const char* name, const py::object& given) : Floats(name, given) {
    if (packed.ndim() != 1) RefuseArray(name, "the shape is " + ShapeOf(packed), "(N,) is needed");
}

Values::operator Span<float>() const {
    return {packed.data(), static_cast<std::size_t>(packed.size())};
}

}  // namespace quarry::python
