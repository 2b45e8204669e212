// The inputs of the keyer as clips: named and ordered as the node's, the foreground first. Where a host
// offers but one input, that is the foreground.
#pragma once

#include <array>
#include <cstddef>

#include "ClipImage.h"

namespace veloxa::ofx {

inline constexpr std::size_t kInputs = 5;
inline constexpr std::size_t kForeground = 0;
inline constexpr std::size_t kBackground = 2;

struct InputClip {
    const char* name;
    ClipImage::Role role;
};

inline constexpr std::array<InputClip, kInputs> kInputClips{{
    {"fg", ClipImage::Role::kPicture},
    {"cp", ClipImage::Role::kPicture},
    {"bg", ClipImage::Role::kBackground},
    {"gm", ClipImage::Role::kMatte},
    {"hm", ClipImage::Role::kMatte},
}};

}  // namespace veloxa::ofx
