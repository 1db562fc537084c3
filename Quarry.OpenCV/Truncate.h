#pragma once

#include <emmintrin.h>

namespace quarry {

/// The value without its fraction. What does not fit, and what is not a number, gives the lowest integer: the
/// processor's own answer, so that it is the same in every build, where a cast would leave it undefined.
inline int Truncate(float value) {
    return _mm_cvttss_si32(_mm_set_ss(value));
}
inline int Truncate(double value) {
    return _mm_cvttsd_si32(_mm_set_sd(value));
}

}  // namespace quarry
