// From the host's values to the working scale.
//
// Up to 0.5 a value is multiplied by 255; above, a soft knee bends the rest of the way to infinity into
// 127.5..255, so 1.0 gives 170 and infinity 255. A NaN stays one. Single precision.
// Both pointers address n floats and do not overlap.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"

using Normalize = void(const float* in, float* out, std::size_t n);
LANE_KERNEL(Normalize, normalize);
