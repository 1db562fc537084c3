/// @file
/// Views over pixels and arrays of the host or of a result. They own nothing and are cheap to copy. The pixels or
/// elements must outlive the view.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "Quarry/SharedRecords.h"

namespace quarry {

/// A read-only range of elements, made from an address and a count, from an array or from a container such as
/// std::vector.
template <class T>
class Span {
public:
    Span() = default;
    Span(const T* first_, std::size_t count_) : first(first_), count(count_) {}

    template <class Container, class = std::enable_if_t<std::is_convertible_v<
                                   decltype(std::data(std::declval<const Container&>())), const T*>>>
    Span(const Container& container) : first(std::data(container)), count(std::size(container)) {}

    const T* data() const { return first; }
    std::size_t size() const { return count; }
    bool empty() const { return count == 0; }
    const T* begin() const { return first; }
    const T* end() const { return first + count; }

    /// @param index  below `size()`; it is not checked
    const T& operator[](std::size_t index) const { return first[index]; }

private:
    const T* first = nullptr;
    std::size_t count = 0;
};

/// The whole frame, for operations that read a part of a frame.
inline constexpr RelRect kWholeFrame = {0.0F, 0.0F, 1.0F, 1.0F};

namespace detail {

[[noreturn]] inline void Refuse(const std::string& message) {
    throw std::invalid_argument(message);
}

inline std::string SizeText(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

/// The library's records hold pointers to non-const data, also to data that the library only reads.
template <class T>
T* Unconst(const T* pointer) {
    return const_cast<T*>(pointer);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

/// A count as records hold it.
/// @throws std::invalid_argument  it does not fit 32 bits
inline int32_t CountOf(const char* what, std::size_t count) {
    if (count > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
        Refuse(std::string(what) + ": " + std::to_string(count) + " are given; at most 2147483647 are allowed");
    }
    return static_cast<int32_t>(count);
}

/// The number of elements of a picture.
/// @param name      the view's name, for the message
/// @param channels  elements per pixel
/// @throws std::invalid_argument  a side is negative, or a row has more than 2147483647 elements
inline std::size_t ElementsOf(const char* name, int width, int height, int channels) {
    if (width < 0 || height < 0) {
        Refuse(std::string(name) + ": the size is " + SizeText(width, height) + "; each side must be 0 or more");
    }
    if (width > std::numeric_limits<int32_t>::max() / channels) {
        Refuse(std::string(name) + ": the width is " + std::to_string(width) + "; at most " +
               std::to_string(std::numeric_limits<int32_t>::max() / channels) + " is allowed");
    }
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(channels);
}

/// For pointers and null, but not for arrays: their length is known, so that they are checked like containers.
template <class Address, class Element>
using IfAddress = std::enable_if_t<!std::is_array_v<Address> && std::is_convertible_v<Address, const Element*>>;

/// A view of packed rows of `kChannels` elements per pixel: the base of the views in this file.
template <class Element, int kChannels>
class PackedView {
public:
    int width() const { return columns; }
    int height() const { return rows; }
    /// Elements from one row to the next: the elements of a row, since rows are packed.
    int stride() const { return columns * kChannels; }
    const Element* data() const { return first; }
    /// All elements, row by row.
    Span<Element> elements() const { return {first, Length(rows)}; }
    /// The elements of one row.
    /// @param y  0 to `height() - 1`; it is not checked
    Span<Element> Row(int y) const { return {first + Length(y), Length(1)}; }

protected:
    PackedView(const char* name, const Element* elements, int width, int height)
        : first(elements), columns(width), rows(height) {
        if (ElementsOf(name, width, height, kChannels) != 0 && elements == nullptr) {
            Refuse(std::string(name) + ": null is given for " + SizeText(width, height) + " pixels");
        }
    }

    PackedView(const char* name, Span<Element> elements, int width, int height)
        : PackedView(name, elements.data(), width, height) {
        const std::size_t needed = ElementsOf(name, width, height, kChannels);
        if (elements.size() >= needed) return;
        Refuse(std::string(name) + ": " + std::to_string(elements.size()) + " elements are given; " +
               SizeText(width, height) + " pixels of " + std::to_string(kChannels) + " need " + std::to_string(needed));
    }

    /// Checks that rows are packed and have `kChannels` channels.
    /// @return the elements
    static const Element* FromRows(const char* name, const Element* elements, int width, int64_t stride, int channels) {
        if (channels != kChannels) {
            Refuse(std::string(name) + ": " + std::to_string(channels) + " channels are given; " +
                   std::to_string(kChannels) + " are needed");
        }
        const int64_t packed = int64_t{width} * kChannels;
        if (stride != packed) {
            Refuse(std::string(name) + ": rows are " + std::to_string(stride) + " bytes apart; packed rows of " +
                   std::to_string(width) + " pixels, " + std::to_string(packed) + " bytes apart, are needed");
        }
        return elements;
    }

private:
    std::size_t Length(int count) const { return static_cast<std::size_t>(stride()) * static_cast<std::size_t>(count); }

    const Element* first;
    int columns;
    int rows;
};

}  // namespace detail

/// A frame or picture: packed 8-bit pixels of three channels, B, G, R unless an operation says otherwise.
///
/// All constructors throw `std::invalid_argument` if a side is negative, or if the pixels are null while the size is
/// not empty.
class ImageView : public detail::PackedView<uint8_t, 3> {
public:
    /// @param pixels     address of `width * height * 3` bytes
    /// @param timestamp  frame time in ticks of 100 ns
    template <class Address, class = detail::IfAddress<Address, uint8_t>>
    ImageView(const Address& pixels, int width, int height, uint64_t timestamp = 0)
        : PackedView(kName, pixels, width, height), ticks(timestamp) {}

    /// Pixels in a container or an array, or `{address, byteCount}`.
    /// @throws std::invalid_argument  there are fewer than `width * height * 3` bytes
    ImageView(Span<uint8_t> pixels, int width, int height, uint64_t timestamp = 0)
        : PackedView(kName, pixels, width, height), ticks(timestamp) {}

    /// A view of rows with an explicit stride and number of channels, as other interfaces give them.
    /// @param stride  bytes from one row to the next
    /// @throws std::invalid_argument  rows are padded, or there are not three channels
    static ImageView FromRows(const uint8_t* pixels, int width, int height, int64_t stride, int channels = 3,
                              uint64_t timestamp = 0) {
        return {PackedView::FromRows(kName, pixels, width, stride, channels), width, height, timestamp};
    }

    /// Frame time in ticks of 100 ns.
    uint64_t timestamp() const { return ticks; }

    /// The view as a record, for an input; the library does not write to its pixels.
    Image record() const { return {detail::Unconst(data()), width(), height(), stride(), ticks}; }

private:
    static constexpr const char* kName = "quarry::ImageView";
    uint64_t ticks;
};

/// A mask: one byte per pixel, rows packed. It is made and checked like an ImageView.
class MaskView : public detail::PackedView<uint8_t, 1> {
public:
    /// @param pixels  address of `width * height` bytes
    template <class Address, class = detail::IfAddress<Address, uint8_t>>
    MaskView(const Address& pixels, int width, int height) : PackedView(kName, pixels, width, height) {}
    MaskView(Span<uint8_t> pixels, int width, int height) : PackedView(kName, pixels, width, height) {}

    static MaskView FromRows(const uint8_t* pixels, int width, int height, int64_t stride, int channels = 1) {
        return {PackedView::FromRows(kName, pixels, width, stride, channels), width, height};
    }

    /// @param x, y  inside the mask; they are not checked
    uint8_t At(int x, int y) const { return Row(y)[static_cast<std::size_t>(x)]; }

    Mask record() const { return {detail::Unconst(data()), width(), height()}; }

private:
    static constexpr const char* kName = "quarry::MaskView";
};

/// A motion field: one displacement in pixels per pixel, rows packed. It is checked like an ImageView.
class FlowView : public detail::PackedView<AbsVector, 1> {
public:
    /// @param displacements  address of `width * height` displacements
    template <class Address, class = detail::IfAddress<Address, AbsVector>>
    FlowView(const Address& displacements, int width, int height) : PackedView(kName, displacements, width, height) {}
    FlowView(Span<AbsVector> displacements, int width, int height) : PackedView(kName, displacements, width, height) {}

    /// @param x, y  inside the field; they are not checked
    const AbsVector& At(int x, int y) const { return Row(y)[static_cast<std::size_t>(x)]; }

    AbsVectorMatrix record() const { return {width(), height(), detail::Unconst(data())}; }

private:
    static constexpr const char* kName = "quarry::FlowView";
};

/// A view as a parameter of functions: a result without a name converts to it too, since that ends after the call. Do
/// not keep one.
template <class View>
class ViewArgument : public View {
public:
    using View::View;

    /// @param source  a view, or an object (temporary or not) whose type converts to a view
    template <class Source, class = std::enable_if_t<std::is_convertible_v<const Source&, View>>>
    ViewArgument(const Source& source) : View(source) {}
};

using ImageArgument = ViewArgument<ImageView>;
using MaskArgument = ViewArgument<MaskView>;

}  // namespace quarry
