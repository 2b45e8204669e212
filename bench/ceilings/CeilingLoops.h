// The loops that the machine's ceilings are measured with, in a form for every width of vectors.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"

namespace bench {

// Does `rounds` rounds of independent operations on numbers that it takes from `seed` on, and leaves a result
// there. Returns the operations that were done, on single numbers.
using CeilingLoop = double(std::size_t rounds, double* seed);

// Makes a plane of another, as kernels do that do next to nothing. Returns the bytes read and written.
using PlaneLoop = double(const float* from, float* to, std::size_t n);

}  // namespace bench

LANE_KERNEL(bench::CeilingLoop, divide_floats);
LANE_KERNEL(bench::CeilingLoop, divide_doubles);
LANE_KERNEL(bench::CeilingLoop, multiply_add_floats);
LANE_KERNEL(bench::CeilingLoop, multiply_add_doubles);
LANE_KERNEL(bench::CeilingLoop, convert);
LANE_KERNEL(bench::PlaneLoop, negate_plane);
