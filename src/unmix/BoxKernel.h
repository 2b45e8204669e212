// Sums over squares of pixels, for pictures small enough to stay in the processor's cache.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"

// `in` has width + 2 radius columns and height + 2 radius rows, `out` width columns and height rows; each of its
// pixels is the sum over (2 radius + 1)^2 of `in` around it, columns first, each from below, then from the left.
// `scratch` holds width + 2 radius floats.
using BoxSum = void(const float* in, int radius, float* scratch, float* out, std::size_t width, std::size_t height);
LANE_KERNEL(BoxSum, box_sum);

// The same for the greatest value.
using BoxMost = void(const float* in, int radius, float* scratch, float* out, std::size_t width, std::size_t height);
LANE_KERNEL(BoxMost, box_most_of);
