// Erosion of a matte's non-zero area along one direction: a value survives unless a value of its window is
// exactly 0. NaN is not 0, neither as a centre nor as a neighbour.
#pragma once

#include <cstddef>
#include <span>

#include "lanes/LaneKernel.h"

// Along a row: `centre` points at the value of the first of n output pixels and has `radius` values to its
// left and n + radius from there on. `scratch` has room for n + 2 * radius floats. out overlaps neither.
using ShrinkRow = void(const float* centre, std::size_t radius, float* scratch, float* out, std::size_t n);
LANE_KERNEL(ShrinkRow, shrink_row);

// Along columns: out, which holds the centre row at first, becomes 0 wherever one of the lines is 0.
using ShrinkLines = void(std::span<const float* const> lines, float* out, std::size_t n);
LANE_KERNEL(ShrinkLines, shrink_lines);
