// Bits of the keyer's input state: which optional inputs there are and whether a screen colour is chosen.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kCpUsable = 1;  // "cp" is connected and "screen_correct" is on
inline constexpr std::uint32_t kGmConnected = 2;
inline constexpr std::uint32_t kHmConnected = 4;
inline constexpr std::uint32_t kNoScreenColor = 8;  // the foreground passes through
