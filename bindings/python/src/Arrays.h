/// @file
/// Buffers of results as arrays.
#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <utility>
#include <vector>

#include "Locked.h"
#include "Quarry/Host.hpp"

namespace quarry::python {

/// An array over elements that `owner` keeps alive; nothing is copied.
template <class Element>
py::array_t<Element> ArrayOver(const Element* first, std::vector<py::ssize_t> shape, const py::capsule& owner) {
    return py::array_t<Element>(std::move(shape), first, owner);
}

/// The pixels of a result: (height, width, 3).
inline py::array ArrayOf(const ImageView& image, const py::capsule& owner) {
    return ArrayOver(image.data(), {image.height(), image.width(), 3}, owner);
}

/// The pixels of a result: (height, width).
inline py::array ArrayOf(const MaskView& mask, const py::capsule& owner) {
    return ArrayOver(mask.data(), {mask.height(), mask.width()}, owner);
}

/// The points of a result: (N, 2).
inline py::array ArrayOf(Span<FloatPoint> points, const py::capsule& owner) {
    return ArrayOver(reinterpret_cast<const float*>(points.data()), {static_cast<py::ssize_t>(points.size()), 2},
                     owner);
}

/// A copy of an updater's elements, which its next frame would change.
template <class View>
auto CopyOf(const View& view) {
    const auto elements = view.elements();
    return std::vector(elements.begin(), elements.end());
}

/// An array that owns its elements. A `Copied` may consist of several `Element`s.
template <class Element, class Copied>
py::array ArrayOf(std::vector<Copied> elements, std::vector<py::ssize_t> shape) {
    auto kept = std::make_unique<std::vector<Copied>>(std::move(elements));
    const auto* const first = reinterpret_cast<const Element*>(kept->data());
    return ArrayOver(first, std::move(shape), CapsuleOf(std::move(kept)));
}

}  // namespace quarry::python
