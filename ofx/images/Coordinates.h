// From the host's canonical coordinates (square pixels at full size) to the pixels of a render and back.
#pragma once

#include <array>

#include "ZoImage/Box.h"
#include "abi/OfxCore.h"

namespace veloxa::ofx {

using RenderScale = std::array<double, 2>;  // 1, 1 at full size; a proxy's is smaller

struct PixelGrid {
    RenderScale scale{1.0, 1.0};
    double aspect = 1.0;  // width of a pixel over its height

    double x_pixels(double canonical) const { return canonical * scale[0] / aspect; }
    double y_pixels(double canonical) const { return canonical * scale[1]; }

    // The pixels that cover the rectangle. An infinite side, and any that lies beyond the integers, ends at
    // kFarAway, so that sums of coordinates stay in range.
    Zo::Image::Box pixels(const OfxRectD& canonical) const;
    OfxRectD canonical(const Zo::Image::Box& pixels) const;
};

inline constexpr int kFarAway = 1 << 28;

// True when a side lies at or beyond kFarAway: the box is no frame.
bool is_endless(const Zo::Image::Box& box);

}  // namespace veloxa::ofx
