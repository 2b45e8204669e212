// Comparisons whose ties and NaN results the keying kernels depend on, and constants they share.
//
// Written as selections so that they compile without branches, in scalar and vector code alike.
#pragma once

#include <algorithm>
#include <cstdint>

#include "ZoImage/Convert.h"

namespace kernel {

using Zo::Image::to_int;

// 1/255 rounded to single precision and widened. Not the double nearest to 1/255, on purpose: stages
// that use it agree with single-precision normalisation of the same sample.
inline constexpr double kByte = 0.003921568859368563;

// The second operand wins ties and NaN.
constexpr double max_of(double a, double b) {
    return a > b ? a : b;
}
constexpr double min_of(double a, double b) {
    return b > a ? a : b;
}
constexpr std::int32_t max_of(std::int32_t a, std::int32_t b) {
    return a > b ? a : b;
}
constexpr std::int32_t min_of(std::int32_t a, std::int32_t b) {
    return a < b ? a : b;
}

// Bounds that let a NaN through.
template <class T>
constexpr T floor_at(T bound, T v) {
    return bound > v ? bound : v;
}
template <class T>
constexpr T cap_at(T bound, T v) {
    return bound < v ? bound : v;
}
template <class T>
constexpr T clamp_to(T low, T high, T v) {
    return cap_at(high, floor_at(low, v));
}

}  // namespace kernel
