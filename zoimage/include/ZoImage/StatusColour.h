// The colours that tell how clean a matte is: exactly 0, exactly 1, between, and what is no matte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Zo::Image {

// 0xffRRGGBB.
inline constexpr std::uint32_t kFalseNan = 0xffff00ff;    // magenta
inline constexpr std::uint32_t kFalseAbove = 0xffff2020;  // red
inline constexpr std::uint32_t kFalseBelow = 0xff2060ff;  // blue

// Black for 0, white for 1, a ramp of colours between (0xffRRGGBB), others for below, above and NaN.
constexpr std::uint32_t status_colour(float alpha) {
    if (alpha != alpha) return kFalseNan;
    if (alpha < 0.0f) return kFalseBelow;
    if (alpha > 1.0f) return kFalseAbove;
    if (alpha == 0.0f) return 0xff000000U;
    if (alpha == 1.0f) return 0xffffffffU;
    // Dark violet, green, light yellow.
    constexpr std::array<std::array<float, 3>, 3> kStops{
        {{80.0f, 40.0f, 130.0f}, {20.0f, 140.0f, 110.0f}, {235.0f, 220.0f, 110.0f}}};
    const std::size_t part = alpha < 0.5f ? 0 : 1;
    const float share = 2.0f * (alpha - 0.5f * static_cast<float>(part));
    std::uint32_t colour = 0xffU;
    for (std::size_t c = 0; c < 3; ++c) {
        const float level = kStops[part][c] + (kStops[part + 1][c] - kStops[part][c]) * share + 0.5f;
        colour = colour << 8U | static_cast<std::uint32_t>(level);
    }
    return colour;
}

}  // namespace Zo::Image
