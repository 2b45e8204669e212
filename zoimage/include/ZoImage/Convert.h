// Float to integer conversion with one defined result for every input.
//
// Truncates toward zero. NaN and anything outside the 32-bit range give kIntIndefinite, which is what
// the processor's own conversion instruction gives, so scalar and vector code agree on every input.
#pragma once

#include <cstdint>
#include <limits>

namespace Zo::Image {

inline constexpr std::int32_t kIntIndefinite = std::numeric_limits<std::int32_t>::min();

[[gnu::always_inline]] constexpr std::int32_t to_int(double v) {
    return v > -2147483649.0 && v < 2147483648.0 ? static_cast<std::int32_t>(v) : kIntIndefinite;
}

[[gnu::always_inline]] constexpr std::int32_t to_int(float v) {
    return v >= -2147483648.0f && v < 2147483648.0f ? static_cast<std::int32_t>(v) : kIntIndefinite;
}

}  // namespace Zo::Image
