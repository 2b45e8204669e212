// Samples as files and hosts hold them, and the engine's floats: the one rule for each type, so that who
// reads a picture, whoever that is, sees the same bits.
//
// Whole numbers stand for 0 to 1 evenly. They are read as the number times the float nearest to 1/255 or
// 1/65535, as image libraries do, which is up to one unit in the last place off the quotient. Written they
// are clipped and rounded to the nearest, halves up; NaN gives 0. Halves (IEEE 754 binary16) are read exactly
// and rounded to nearest, ties to even; from 65520 on they are infinite, and NaN stays NaN. Floats pass with
// their bits.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Zo::Image {

// The bits of a half float, apart from 16-bit integers.
enum class Half : std::uint16_t {};

[[gnu::always_inline]] constexpr float to_float(float v) {
    return v;
}

template <class Number, class = std::enable_if_t<std::is_unsigned_v<Number>>>
[[gnu::always_inline]] constexpr float to_float(Number v) {
    return static_cast<float>(v) * (1.0f / static_cast<float>(std::numeric_limits<Number>::max()));
}

[[gnu::always_inline]] constexpr float to_float(Half half) {
    constexpr std::uint32_t kInfinity = 0x7c00U << 13U;
    const auto bits = static_cast<std::uint32_t>(half);
    const std::uint32_t magnitude = (bits & 0x7fffU) << 13U;
    // A half's exponent and mantissa at a float's place are its value times 2^-112, the difference of biases.
    const auto value = std::bit_cast<std::uint32_t>(std::bit_cast<float>(magnitude) * 0x1p112f);
    const std::uint32_t special = magnitude >= kInfinity ? 0x7f800000U : 0U;
    return std::bit_cast<float>(value | special | (bits & 0x8000U) << 16U);
}

// The whole number for v where `white` stands for 1. In float the sum would be rounded once more.
[[gnu::always_inline]] constexpr unsigned to_number(float v, unsigned white) {
    const float low = v > 0.0f ? v : 0.0f;
    const float clipped = low < 1.0f ? low : 1.0f;
    const double rounded = static_cast<double>(clipped) * white + 0.5;
    // By way of a signed number, for which processors have an instruction.
    return static_cast<unsigned>(static_cast<int>(rounded));
}

template <class Sample>
[[gnu::always_inline]] constexpr Sample from_float(float v) {
    if constexpr (std::is_same_v<Sample, float>) {
        return v;
    } else if constexpr (std::is_same_v<Sample, Half>) {
        constexpr std::uint32_t kInfinity = 0x7f800000U;
        constexpr std::uint32_t kSmallestNormal = 113U << 23U;  // of a half, 2^-14
        constexpr std::uint32_t kTooLarge = 143U << 23U;        // 2^16, the first power that a half has not
        const auto bits = std::bit_cast<std::uint32_t>(v);
        const std::uint32_t magnitude = bits & 0x7fffffffU;
        // Beside a power of two that is 2^13 times the value's own, as many bits are left as a half has: the
        // sum is rounded as the half must be, and its mantissa counts the half's units. Denormals share one
        // power.
        const std::uint32_t exponent = magnitude & kInfinity;
        const std::uint32_t power = exponent > kSmallestNormal ? exponent : kSmallestNormal;
        const float sum = std::bit_cast<float>(magnitude) + std::bit_cast<float>(power + (13U << 23U));
        const std::uint32_t units = std::bit_cast<std::uint32_t>(sum) & 0x7fffffU;
        const std::uint32_t finite = ((power - kSmallestNormal) >> 13U) + units;
        // By masks: written as selections these become branches, which do not vectorise.
        const std::uint32_t large = 0U - static_cast<std::uint32_t>(magnitude >= kTooLarge);
        const std::uint32_t nan = 0U - static_cast<std::uint32_t>(magnitude > kInfinity);
        const std::uint32_t payload = 0x200U | ((magnitude >> 13U) & 0x3ffU);
        const std::uint32_t half = (finite & ~large) | (0x7c00U & large) | (payload & nan);
        return static_cast<Half>(half | ((bits >> 16U) & 0x8000U));
    } else {
        return static_cast<Sample>(to_number(v, std::numeric_limits<Sample>::max()));
    }
}

}  // namespace Zo::Image
