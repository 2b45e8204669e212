// The inputs of the keyer as clips: named and ordered as the node's, the foreground first. Where a host
// offers but one input, that is the foreground.
#pragma once

#include <array>
#include <cstddef>

#include "images/ClipImage.h"

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

// The images of the node's inputs.
class InputImages {
  public:
    // Asks the poll, which outlives this, at every row.
    explicit InputImages(AbortPoll& poll) {
        for (ClipImage& image : images_) image.poll(&poll);
    }
    ClipImage& operator[](std::size_t n) { return images_[n]; }
    // Connects those that are used, and fg and bg, which are black otherwise.
    void connect(Zo::Image::Iop& node, const std::array<bool, kInputs>& used) {
        for (std::size_t n = 0; n < kInputs; ++n) {
            const bool always = n == kForeground || n == kBackground;
            node.set_input(static_cast<int>(n), always || used[n] ? &images_[n] : nullptr);
        }
    }

  private:
    std::array<ClipImage, kInputs> images_{{ClipImage(kInputClips[0].role), ClipImage(kInputClips[1].role),
                                            ClipImage(kInputClips[2].role), ClipImage(kInputClips[3].role),
                                            ClipImage(kInputClips[4].role)}};
};

}  // namespace veloxa::ofx
