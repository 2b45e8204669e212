// Between the values that a plate stores and the light that they stand for.
//
// sRGB: IEC 61966-2-1, its straight line carried on below 0 and its power above 1. Logarithmic: the 10-bit
// printing density of film scans (reference black 95, white 685, 0.002 density a code, gamma 0.6), 0 light at
// black. As stored: unchanged. NaN becomes 0, infinities and what is beyond it the largest half float. Single
// precision. Pointers address n floats; `out` may be `in`.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"
#include "unmix/UnmixParams.h"

using Recode = void(Encoding encoding, const float* in, float* out, std::size_t n);
LANE_KERNEL(Recode, to_light);
LANE_KERNEL(Recode, from_light);
