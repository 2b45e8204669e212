// Natural logarithm and exponential in plain arithmetic.
//
// The C library's pick another instruction sequence, and now and then another last bit, by processor; these
// give the same bits everywhere. Both are within 1 unit in the last place.
// Doubles is a double or a pack of them.
#pragma once

#include <cstdint>
#include <numbers>

#include "lanes/KernelMath.h"

namespace kernel {

// ln 2 in two parts; the first has so few bits that its product with an exponent is exact.
inline constexpr double kLn2High = 0x1.62e42feep-1;
inline constexpr double kLn2Low = 0x1.a39ef35793c76p-33;

// Adding this to a whole number up to 2^51 leaves it in the low bits of the sum.
inline constexpr double kIntoLowBits = 0x1.8p52;

// For v from 2^-1022 up to, not including, infinity. A NaN stays one.
template <class Doubles>
[[gnu::always_inline]] inline Doubles log_of(Doubles v) {
    // v = 2^k (1 + f) with 1 + f between the roots of 1/2 and 2.
    constexpr std::uint64_t kRootHalf = 0x3fe6a09e00000000U;
    constexpr std::uint64_t kOne = 0x3ff0000000000000U;
    constexpr std::uint64_t kMantissa = 0x000fffffffffffffU;
    const auto shifted = bits_of(v) + (kOne - kRootHalf);
    const auto mantissa = (shifted & kMantissa) + kRootHalf;
    const Doubles exponent = from_bits((shifted >> 52U) | 0x4330000000000000U) - 0x1p52 - 1023.0;
    const Doubles f = from_bits(mantissa) - 1.0;

    // ln(1 + f) = 2 atanh(s) = 2 s + 2/3 s^3 + 2/5 s^5 + ...
    const Doubles s = f / (2.0 + f);
    const Doubles z = s * s;
    Doubles tail = 2.0 / 23.0;
    tail = tail * z + 2.0 / 21.0;
    tail = tail * z + 2.0 / 19.0;
    tail = tail * z + 2.0 / 17.0;
    tail = tail * z + 2.0 / 15.0;
    tail = tail * z + 2.0 / 13.0;
    tail = tail * z + 2.0 / 11.0;
    tail = tail * z + 2.0 / 9.0;
    tail = tail * z + 2.0 / 7.0;
    tail = tail * z + 2.0 / 5.0;
    tail = tail * z + 2.0 / 3.0;
    tail = tail * z;
    // 2 s is f - s f; written with f^2 / 2, whose share in the rounding error is smaller.
    const Doubles half = 0.5 * f * f;
    const Doubles result = exponent * kLn2High - ((half - (s * (half + tail) + exponent * kLn2Low)) - f);
    return choose(v != v, v, result);
}

// Beyond -700 and 700 as at these: finite, not 0. A NaN stays one.
template <class Doubles>
[[gnu::always_inline]] inline Doubles exp_of(Doubles v) {
    const Doubles x = clamp_to(-700.0, 700.0, v);
    // e^x = 2^k e^r with r at most half of ln 2 from 0.
    const Doubles shifted = x * std::numbers::log2e + kIntoLowBits;
    const Doubles k = shifted - kIntoLowBits;
    const Doubles r = (x - k * kLn2High) - k * kLn2Low;
    Doubles tail = 1.0 / 6227020800.0;
    tail = tail * r + 1.0 / 479001600.0;
    tail = tail * r + 1.0 / 39916800.0;
    tail = tail * r + 1.0 / 3628800.0;
    tail = tail * r + 1.0 / 362880.0;
    tail = tail * r + 1.0 / 40320.0;
    tail = tail * r + 1.0 / 5040.0;
    tail = tail * r + 1.0 / 720.0;
    tail = tail * r + 1.0 / 120.0;
    tail = tail * r + 1.0 / 24.0;
    tail = tail * r + 1.0 / 6.0;
    tail = tail * r + 0.5;
    const Doubles power = from_bits((bits_of(shifted) + std::uint64_t{1023}) << 52U);
    return (1.0 + (r + r * r * tail)) * power;
}

}  // namespace kernel
