// Frame rates as fractions.
#pragma once

#include <array>
#include <cmath>

namespace veloxa {

// Numerator and denominator of what a number of frames a second stands for: 23.976 is 24000/1001. The rate is
// above 0 and below 1000.
inline std::array<int, 2> rate_fraction(float rate) {
    constexpr float kNear = 0.001f;
    const float whole = std::round(rate);
    if (std::abs(rate - whole) < kNear) return {static_cast<int>(whole), 1};
    if (std::abs(rate - whole / 1.001f) < kNear) return {static_cast<int>(whole) * 1000, 1001};
    return {static_cast<int>(std::round(rate * 1000.0f)), 1000};
}

}  // namespace veloxa
