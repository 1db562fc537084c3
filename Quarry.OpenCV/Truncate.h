#pragma once

#include <emmintrin.h>

namespace quarry {

/// The value without its fraction. A value that does not fit, or is not a number, gives the lowest integer. This is the
/// result of the processor's own instruction, the same in every build; the result of a cast would be undefined.
inline int Truncate(float value) {
    return _mm_cvttss_si32(_mm_set_ss(value));
}
inline int Truncate(double value) {
    return _mm_cvttsd_si32(_mm_set_sd(value));
}

}  // namespace quarry
