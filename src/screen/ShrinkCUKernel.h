// A maximum filter with a fractional radius, along one direction.
//
// The window of half-width h = n + 1, where n is the radius without its fraction, weighs every value with 1
// but the two at its ends, which count with the fraction. The result is the largest product, from 0.0 up:
// negative products and NaN never win. A radius of 0 still has its two ends, weighed 0.
#pragma once

#include <cstddef>
#include <span>

#include "lanes/LaneKernel.h"

// Along a row: `centre` points at the value of the first of n output pixels and has `half_width` values to
// its left and n + half_width from there on. `scratch` has room for n + 2 * half_width floats. out overlaps
// neither. half_width >= 1.
using ShrinkCURow = void(const float* centre, std::size_t half_width, float fraction, float* scratch,
                         float* out, std::size_t n);
LANE_KERNEL(ShrinkCURow, shrink_cu_row);

// Along columns: raises out, which is 0 at first, to the values of lines that weigh 1, and of one that does
// not.
using ShrinkCULines = void(std::span<const float* const> lines, float* out, std::size_t n);
LANE_KERNEL(ShrinkCULines, shrink_cu_lines);
using ShrinkCUEnd = void(const float* line, float fraction, float* out, std::size_t n);
LANE_KERNEL(ShrinkCUEnd, shrink_cu_end);
