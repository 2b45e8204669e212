// Turns a matte over: 255 becomes 0, 0 becomes 255, with values beyond clamped first. A NaN stays one.
//
// Single precision. Both pointers address n floats and do not overlap.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"

using OutputMatte = void(const float* matte, float* out, std::size_t n);
LANE_KERNEL(OutputMatte, output_matte);
