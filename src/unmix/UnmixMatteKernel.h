// The unmixed alpha as the matte of the stages behind: 0 becomes 255, 1 becomes 0. A NaN stays one.
//
// Single precision. Both pointers address n floats and do not overlap.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"

using UnmixMatte = void(const float* alpha, float* matte, std::size_t n);
LANE_KERNEL(UnmixMatte, unmix_matte);
