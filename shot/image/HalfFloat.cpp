#include "shot/image/HalfFloat.h"

#include <bit>

namespace veloxa {

namespace {

constexpr std::uint32_t kFloatInfinity = 0x7f800000U;
constexpr std::uint32_t kSmallestNormal = 113U << 23;  // of a half, 2^-14
constexpr std::uint32_t kTooLarge = 143U << 23;        // 2^16, the first power that a half has not
constexpr std::uint32_t kHalfInfinity = 0x7c00U;
// A half's exponent and mantissa at a float's place are its value times 2^-112, the difference of the biases.
constexpr float kRebias = 0x1p112f;

float widened(Half half) {
    const auto bits = static_cast<std::uint32_t>(half);
    const std::uint32_t magnitude = (bits & 0x7fffU) << 13;
    const auto value = std::bit_cast<std::uint32_t>(std::bit_cast<float>(magnitude) * kRebias);
    const std::uint32_t special = magnitude >= (kHalfInfinity << 13) ? kFloatInfinity : 0U;
    return std::bit_cast<float>(value | special | (bits & 0x8000U) << 16);
}

Half narrowed(float v) {
    const auto bits = std::bit_cast<std::uint32_t>(v);
    const std::uint32_t magnitude = bits & 0x7fffffffU;
    // Beside a power of two that is 2^13 times the value's own, as many bits are left as a half has: the sum
    // is rounded as the half must be, and its mantissa counts the half's units. Denormals share one power.
    const std::uint32_t exponent = magnitude & kFloatInfinity;
    const std::uint32_t power = exponent > kSmallestNormal ? exponent : kSmallestNormal;
    const float sum = std::bit_cast<float>(magnitude) + std::bit_cast<float>(power + (13U << 23));
    const std::uint32_t units = std::bit_cast<std::uint32_t>(sum) & 0x7fffffU;
    const std::uint32_t finite = ((power - kSmallestNormal) >> 13) + units;
    // By masks: written as selections these become branches, which do not vectorise.
    const std::uint32_t large = 0U - static_cast<std::uint32_t>(magnitude >= kTooLarge);
    const std::uint32_t nan = 0U - static_cast<std::uint32_t>(magnitude > kFloatInfinity);
    const std::uint32_t payload = 0x200U | ((magnitude >> 13) & 0x3ffU);
    const std::uint32_t half = (finite & ~large) | (kHalfInfinity & large) | (payload & nan);
    return static_cast<Half>(half | ((bits >> 16) & 0x8000U));
}

}  // namespace

void from_half(const Half* in, float* out, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n) out[n] = widened(in[n]);
}

void to_half(const float* in, Half* out, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n) out[n] = narrowed(in[n]);
}

}  // namespace veloxa
