/// @file
/// Which colours are those of flames, told plainly: what the library's answers are compared with.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace quarry::test {

/// A colour as CIE L*a*b*.
struct Color {
    double L, a, b;
};

/// The light of every byte, 0..100.
inline const std::array<double, 256>& Lights() {
    static const std::array<double, 256> lights = [] {
        std::array<double, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double part = static_cast<double>(i) / 255;
            const double light = part > 0.04045 ? std::pow((part + 0.055) / 1.055, 2.4) : part / 12.92;
            values[i] = light * 100;
        }
        return values;
    }();
    return lights;
}

inline double PlainRoot(double t) {
    if (t > 0.008856) return std::pow(t, 1.0 / 3.0);
    return 7.787 * t + 16.0 / 116.0;
}

inline Color PlainLab(int red, int green, int blue) {
    const double r = Lights()[static_cast<std::size_t>(red)];
    const double g = Lights()[static_cast<std::size_t>(green)];
    const double b = Lights()[static_cast<std::size_t>(blue)];
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

}  // namespace quarry::test
