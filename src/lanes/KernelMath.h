// The vocabulary of the keying kernels, for single values. Packs of pixels (lanes/Pack.h) have the same
// functions, so that one template is the arithmetic of every form.
//
// Comparisons and selections say exactly which operand wins ties and NaN: results depend on it.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "ZoImage/Convert.h"

#define KERNEL_INLINE [[gnu::always_inline]] constexpr

namespace kernel {

using Zo::Image::to_int;

// 1/255 rounded to single precision and widened. Not the double nearest to 1/255, on purpose: stages
// that use it agree with single-precision normalisation of the same sample.
inline constexpr double kByte = 0.003921568859368563;

template <class T>
KERNEL_INLINE T choose(bool condition, T a, T b) {
    return condition ? a : b;
}

// The second operand wins ties and NaN.
KERNEL_INLINE double max_of(double a, double b) {
    return a > b ? a : b;
}
KERNEL_INLINE double min_of(double a, double b) {
    return b > a ? a : b;
}
KERNEL_INLINE float max_of(float a, float b) {
    return a > b ? a : b;
}
KERNEL_INLINE float min_of(float a, float b) {
    return b > a ? a : b;
}

KERNEL_INLINE std::int32_t max_of(std::int32_t a, std::int32_t b) {
    return a > b ? a : b;
}
KERNEL_INLINE std::int32_t min_of(std::int32_t a, std::int32_t b) {
    return b > a ? a : b;
}

KERNEL_INLINE bool all_of(bool condition) {
    return condition;
}

KERNEL_INLINE double wide(float v) {
    return static_cast<double>(v);
}
KERNEL_INLINE double wide(std::int32_t v) {
    return static_cast<double>(v);
}
KERNEL_INLINE float narrow(double v) {
    return static_cast<float>(v);
}
KERNEL_INLINE float narrow(std::int32_t v) {
    return static_cast<float>(v);
}
// Toward zero; NaN and what does not fit give the lowest integer.
KERNEL_INLINE std::int32_t truncated(double v) {
    return to_int(v);
}
// The integer part, a double again.
KERNEL_INLINE double whole(double v) {
    return wide(truncated(v));
}
// Differences of integers wrap.
KERNEL_INLINE std::int32_t minus(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

KERNEL_INLINE std::uint64_t bits_of(double v) {
    return std::bit_cast<std::uint64_t>(v);
}
KERNEL_INLINE double from_bits(std::uint64_t bits) {
    return std::bit_cast<double>(bits);
}

// Where two NaNs meet, the order of an instruction's operands decides which survives, and the compiler picks
// that order anew for each form of a loop. Results that mix inputs take this one NaN, so that a pixel's bits
// depend on nothing but its inputs.
KERNEL_INLINE float one_nan(float v) {
    return v == v ? v : std::numeric_limits<float>::quiet_NaN();
}

// Bounds that let a NaN through.
template <class T>
KERNEL_INLINE T floor_at(std::type_identity_t<T> bound, T v) {
    return max_of(bound, v);
}
template <class T>
KERNEL_INLINE T cap_at(std::type_identity_t<T> bound, T v) {
    return min_of(bound, v);
}
template <class T>
KERNEL_INLINE T clamp_to(std::type_identity_t<T> low, std::type_identity_t<T> high, T v) {
    return cap_at(high, floor_at(low, v));
}

}  // namespace kernel

#undef KERNEL_INLINE
