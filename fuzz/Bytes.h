#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <opencv2/core.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

namespace quarry::fuzz {

/// Makes numbers, buffers and records out of the bytes of a case; after the last byte come zeros.
///
/// What the interface cannot check is not made: pointers that are neither null nor point at a buffer, and sizes and
/// counts that exceed their buffer. What it leaves to the host's memory or patience is kept small: buffers, results and
/// windows. Contours that abort the process by design are left out by their targets, and model files are OpenCV's to
/// check. All else takes every value: numbers that are none, negative sizes, null, orders of calls.
///
/// Buffers have the size that their record says and not a byte more, so that a sanitizer sees what is read beside them;
/// they live as long as this object.
class Bytes {
public:
    Bytes(const uint8_t* data, std::size_t size) : next(data), left(size) {}

    /// Any bits.
    template <class T>
    T Any() {
        T value = {};
        const std::size_t length = std::min(left, sizeof(value));
        if (length != 0) std::memcpy(&value, next, length);
        next += length;
        left -= length;
        return value;
    }

    /// 0..limit - 1
    int Below(int limit) { return static_cast<int>(Any<uint32_t>() % static_cast<uint32_t>(limit)); }

    /// Once in a while.
    bool Rarely() { return Any<uint8_t>() >= 240; }

    /// A float or double: mostly around 0..1, at times one that is hard to work with, at times any.
    template <class T>
    T Real() {
        using Limits = std::numeric_limits<T>;
        const auto kind = Any<uint8_t>();
        if (kind < 192) return static_cast<T>(Any<uint8_t>()) / T{160} - T{0.25};
        if (kind >= 224) return Any<T>();
        constexpr std::array kHard = {T{0},
                                      T{-0.0},
                                      T{-1},
                                      T{1e9},
                                      T{-1e9},
                                      T{2147483648.0},
                                      Limits::max(),
                                      Limits::lowest(),
                                      Limits::min(),
                                      Limits::denorm_min(),
                                      Limits::quiet_NaN(),
                                      Limits::infinity(),
                                      -Limits::infinity()};
        return kHard[kind % kHard.size()];
    }

    /// 0..most, rarely negative.
    int Size(int most) { return Rarely() ? -1 - Below(64) : Below(most + 1); }

    /// An array of a record type, filled by `make`.
    template <class T, class Make>
    T* Array(int count, Make make) {
        T* const array = reinterpret_cast<T*>(Buffer(static_cast<std::size_t>(std::max(count, 0)) * sizeof(T)));
        std::generate_n(array, count, make);
        return array;
    }

    FloatPoint* Points(int count) {
        return Array<FloatPoint>(count, [&] { return FloatPoint{Real<float>(), Real<float>()}; });
    }

    /// Pixels of noise, of a repeated pattern, or of rectangles on a ground.
    uint8_t* Pixels(int width, int height, int channels) {
        if (width <= 0 || height <= 0) return Buffer(0);
        cv::Mat picture(height, width, CV_8UC(channels),
                        Buffer(static_cast<std::size_t>(width) * static_cast<std::size_t>(height * channels)));
        switch (Below(3)) {
            case 0:
                cv::RNG(Any<uint32_t>() + uint64_t{1}).fill(picture, cv::RNG::UNIFORM, 0, 256);
                break;
            case 1:
                Repeat(picture);
                break;
            default:
                Draw(picture);
        }
        return picture.data;
    }

    /// A frame of up to `most` x `most` pixels: rarely without pixels, negative in size or null.
    Image Frame(int most = 64) {
        const int width = Size(most);
        return Frame(width, Size(most));
    }

    Image Frame(int width, int height) {
        uint8_t* const pixels = Rarely() ? nullptr : Pixels(width, height, 3);
        const int packed = width * 3;
        const std::array strides = {packed, packed + Below(64), Below(64) * 3, -1 - Below(4096)};
        return {pixels, width, height, strides[Rarely() ? static_cast<std::size_t>(Below(4)) : 0], Any<uint64_t>()};
    }

    /// The same for an operation that reads or builds nothing by the size of a null frame: that size may be any.
    Image FrameOrNull(int most = 64) {
        if (!Rarely()) return Frame(most);
        return {nullptr, Any<int32_t>(), Any<int32_t>(), Any<int32_t>(), Any<uint64_t>()};
    }

    /// A contour of up to 64 points, rarely null.
    Contour Outline(int least = 0) {
        const int count = least + Below(65 - least);
        return {Rarely() ? nullptr : Points(count), count, Real<float>(), Real<float>()};
    }

private:
    uint8_t* Buffer(std::size_t size) { return buffers.emplace_back(std::make_unique<uint8_t[]>(size)).get(); }

    void Repeat(cv::Mat& picture) {
        std::vector<uint8_t> pattern(static_cast<std::size_t>(1 + Below(64)));
        std::generate(pattern.begin(), pattern.end(), [&] { return Any<uint8_t>(); });
        const std::size_t size = picture.total() * picture.elemSize();
        for (std::size_t i = 0; i < size; ++i) picture.data[i] = pattern[i % pattern.size()];
    }

    void Draw(cv::Mat& picture) {
        picture.setTo(Color());
        for (int i = Below(12); i > 0; --i) {
            const cv::Rect box{Below(picture.cols), Below(picture.rows), 1 + Below(picture.cols),
                               1 + Below(picture.rows)};  // in braces, so that the bytes are taken in this order
            picture(box & cv::Rect(cv::Point(), picture.size())).setTo(Color());
        }
    }

    cv::Scalar Color() {
        const auto color = Any<std::array<uint8_t, 3>>();
        return {static_cast<double>(color[0]), static_cast<double>(color[1]), static_cast<double>(color[2])};
    }

    const uint8_t* next;
    std::size_t left;
    std::vector<std::unique_ptr<uint8_t[]>> buffers;
};

}  // namespace quarry::fuzz
