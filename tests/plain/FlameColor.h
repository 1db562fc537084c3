/// @file
/// Which colours are those of flames, told plainly: what the library's answers are compared with.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace quarry::plain {

/// A colour as CIE L*a*b*.
struct Color {
    double L, a, b;
};

/// The light of a byte, 0..100.
inline double Light(int byte) {
    const double part = static_cast<double>(byte) / 255;
    const double light = part > 0.04045 ? std::pow((part + 0.055) / 1.055, 2.4) : part / 12.92;
    return light * 100;
}

/// The same for many colours: every light is computed once.
inline double TabledLight(int byte) {
    static const std::array<double, 256> lights = [] {
        std::array<double, 256> values{};
        for (int i = 0; i < 256; ++i) values[static_cast<std::size_t>(i)] = Light(i);
        return values;
    }();
    return lights[static_cast<std::size_t>(byte)];
}

inline double PlainRoot(double t) {
    if (t > 0.008856) return std::pow(t, 1.0 / 3.0);
    return 7.787 * t + 16.0 / 116.0;
}

/// @param light  of a byte: `Light` or `TabledLight`
inline Color PlainLab(int red, int green, int blue, double (*light)(int) = TabledLight) {
    const double r = light(red);
    const double g = light(green);
    const double b = light(blue);
    const double fx = PlainRoot((0.4124 * r + 0.3576 * g + 0.1805 * b) / 95.047);
    const double fy = PlainRoot((0.2126 * r + 0.7152 * g + 0.0722 * b) / 100);
    const double fz = PlainRoot((0.0193 * r + 0.1192 * g + 0.9505 * b) / 108.883);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

/// The rules one by one; the roots are of positive numbers for every a that the first one lets through.
inline bool PlainIsFlame(const Color& color) {
    const auto& [L, a, b] = color;
    if (a <= -23 || a >= 51) return false;
    if (a > 17.9) {
        if (L <= 59) return false;
    } else if (L <= 34 + std::sqrt(4200 - (a + 42) * (a + 42))) {
        return false;
    }
    const double upper = a > 5 ? -0.54 * a + 92.5 : std::sqrt(1600 - (a + 7) * (a + 7)) + 59.5;
    if (upper <= L) return false;
    const double yellow = a > 4 ? 1.1 * a - 12 : 0.13 * ((a - 6) * (a - 6)) - 8;
    return b > yellow && L > -0.95 * b + 92;
}

}  // namespace quarry::plain
