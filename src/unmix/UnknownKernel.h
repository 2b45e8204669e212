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

// The rows below, here and above of the plate, channel by channel, each with one pixel more at both ends; the
// backing's row without. `odd` gets 1 where their mean over 3 x 3 pixels is off the backing in any channel, else 0.
using OddPixels = void(const OddParams& params, const std::array<std::array<const float*, 3>, 3>& plate,
                       const std::array<const float*, 3>& backing, float* odd, std::size_t n);
LANE_KERNEL(OddPixels, odd_pixels);

// `out` gets 1 where more than three tenths of the 3 x 3 pixels are odd; rows as above.
using MostlyOdd = void(const std::array<const float*, 3>& odd, std::uint8_t* out, std::size_t n);
LANE_KERNEL(MostlyOdd, mostly_odd);

// `out` gets what is set in any of the five: the pixel above, below, to the left, to the right, and itself. `here`
// has one pixel more at both ends.
using GrowMask = void(const std::array<const std::uint8_t*, 3>& rows, std::uint8_t* out, std::size_t n);
LANE_KERNEL(GrowMask, grow_mask);
