// Orphan removal in one row of a binary matte: a pixel that disagrees with at least `threshold` of its eight
// neighbours is flipped (0 to 255, anything else to 0).
//
// The three rows start one pixel left of the output and are two pixels longer; n is the output's length.
// Neighbours are read from the input alone, so flips do not cascade. The output must not overlap the inputs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"

using RemoveIslands = void(std::int32_t threshold, const float* below, const float* here, const float* above,
                           float* out, std::size_t n);
LANE_KERNEL(RemoveIslands, remove_islands);
