// One NaN for all.
//
// Where two NaNs meet, the operands' order decides which survives, and the compiler picks that order anew for
// each form of a loop: the vector body and its tail can differ. Results that mix inputs take this one, so
// that a pixel's bits do not depend on where its span begins.
#pragma once

#include <limits>

inline float one_nan(float v) {
    return v == v ? v : std::numeric_limits<float>::quiet_NaN();
}
