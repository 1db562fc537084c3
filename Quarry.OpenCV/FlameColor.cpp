// Compiled twice: into the library, and into the program that makes the library's table of flame colours.
#include <cmath>

#include "Quarry.OpenCV/PixelwiseFire.h"

namespace {

/// Linear light of an sRGB channel, 0..100.
/// @param channel  0..255
double Linear(double channel) {
    const double c = channel / 255.0;
    return (c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.4) : c / 12.92) * 100.0;
}

/// CIE's function f of a tristimulus value relative to the white point's.
double Compressed(double t) {
    return t > 0.008856 ? std::pow(t, 1.0 / 3.0) : 7.787 * t + 16.0 / 116.0;
}

}  // namespace

PixelwiseFireProcessor::Lab PixelwiseFireProcessor::RGB2Lab(double r, double g, double b) {
    const double red = Linear(r);
    const double green = Linear(g);
    const double blue = Linear(b);
    const double X = 0.4124 * red + 0.3576 * green + 0.1805 * blue;
    const double Y = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    const double Z = 0.0193 * red + 0.1192 * green + 0.9505 * blue;
    const double x = Compressed(X / 95.047);
    const double y = Compressed(Y / 100.0);
    const double z = Compressed(Z / 108.883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

bool PixelwiseFireProcessor::ColorLabLIsFlame(double L, double a) {
    const double t1 = 4200.0 - (a + 42.0) * (a + 42.0);
    const double bound1 = t1 > 0 ? 34.0 + std::sqrt(t1) : L + 1.0;  // L + 1 makes the comparison below fail
    const double t2 = 1600.0 - (a + 7.0) * (a + 7.0);
    const double bound2 = t2 > 0 ? std::sqrt(t2) + 59.5 : L - 1.0;
    if (!(a > -23.0) || !(a < 51.0)) return false;
    const bool passes = (a > 17.9 && L > 59.0) || (a <= 17.9 && L > bound1);
    if (!passes) return false;
    return a > 5.0 ? -0.54 * a + 92.5 > L : bound2 > L;
}

bool PixelwiseFireProcessor::ColorLabBIsFlame(double a, double b) {
    return a > 4.0 ? b > 1.1 * a - 12.0 : b > 0.13 * ((a - 6.0) * (a - 6.0)) - 8.0;
}

bool PixelwiseFireProcessor::ColorIsFlame(double L, double a, double b) {
    return ColorLabLIsFlame(L, a) && ColorLabBIsFlame(a, b) && L > -0.95 * b + 92.0;
}
