// Which pixels of a row are off the backing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"

struct OddParams {
    std::array<float, 3> noise;  // tolerance by noise, for each channel,
    float share;                 // and by the backing's brightest channel
};

// The rows below, here and above of the plate, channel by channel, each with one pixel more before the first
// and after the last; `odd` gets 1 where their mean over 3 x 3 pixels is off the backing in any channel, else
// 0.
using OddPixels = void(const OddParams& params, const std::array<std::array<const float*, 3>, 3>& plate,
                       const std::array<const float*, 3>& backing, float* odd, std::size_t n);
LANE_KERNEL(OddPixels, odd_pixels);

// `out` gets 1 where more than three tenths of the 3 x 3 pixels are odd; the rows begin with the pixel
// before.
using MostlyOdd = void(const std::array<const float*, 3>& odd, std::uint8_t* out, std::size_t n);
LANE_KERNEL(MostlyOdd, mostly_odd);
