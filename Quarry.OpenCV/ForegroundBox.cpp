#include "Quarry.OpenCV/ForegroundBox.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

/// Whether all bytes are 0: the first is 0, and each equals the next. std::memcmp compares them, since it uses the
/// widest instructions of the machine.
bool AllZero(const uint8_t* bytes, std::ptrdiff_t count) {
    return count <= 0 || (*bytes == 0 && std::memcmp(bytes, bytes + 1, static_cast<std::size_t>(count - 1)) == 0);
}

/// The index of the first byte that is not 0, by bisection. There must be one before `end`.
std::ptrdiff_t BeginOfNotZero(const uint8_t* bytes, std::ptrdiff_t end) {
    std::ptrdiff_t begin = 0;
    while (end - begin > 1) {
        const std::ptrdiff_t middle = begin + (end - begin) / 2;
        (AllZero(bytes + begin, middle - begin) ? begin : end) = middle;
    }
    return begin;
}

/// One more than the index of the last byte that is not 0, by bisection. There must be one at `begin` or later.
std::ptrdiff_t EndOfNotZero(const uint8_t* bytes, std::ptrdiff_t begin, std::ptrdiff_t end) {
    while (end - begin > 1) {
        const std::ptrdiff_t middle = begin + (end - begin) / 2;
        (AllZero(bytes + middle, end - middle) ? end : begin) = middle;
    }
    return end;
}

/// A range of bytes of a row; `end` is excluded.
struct Span {
    std::ptrdiff_t begin, end;
};

/// The span, widened to hold all bytes of the row that are not 0.
Span Widened(const Span& span, const uint8_t* row, std::ptrdiff_t count) {
    Span wide = span;
    if (!AllZero(row, span.begin)) wide.begin = BeginOfNotZero(row, span.begin);
    if (!AllZero(row + span.end, count - span.end)) wide.end = EndOfNotZero(row, span.end, count);
    return wide;
}

}  // namespace

namespace quarry {

cv::Rect ForegroundBox(const cv::Mat& image) {
    if (image.cols <= 0 || image.rows <= 0) return {};
    const cv::Rect whole(0, 0, image.cols, image.rows);
    const int channels = image.channels();
    const std::ptrdiff_t count = std::ptrdiff_t{image.cols} * channels;
    int top = 0;
    while (top < image.rows && AllZero(image.ptr(top), count)) ++top;
    if (top >= image.rows) return cv::Rect(0, 0, 1, 1) & whole;
    int bottom = image.rows;
    while (AllZero(image.ptr(bottom - 1), count)) --bottom;

    const std::ptrdiff_t seed = BeginOfNotZero(image.ptr(top), count);
    // The middle row comes first: it is often the widest, so that the others rarely widen the span.
    Span span = Widened({seed, seed + 1}, image.ptr(top + (bottom - top) / 2), count);
    for (int row = top; row < bottom; ++row) span = Widened(span, image.ptr(row), count);

    const auto left = static_cast<int>(span.begin / channels);
    const auto right = static_cast<int>((span.end - 1) / channels + 1);
    return cv::Rect(left - 1, top - 1, right - left + 2, bottom - top + 2) & whole;
}

}  // namespace quarry
