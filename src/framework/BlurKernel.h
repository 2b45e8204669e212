// The box blur of a span: 2 * radius + 1 lines summed, then scaled.
//
// Sums in single precision, from 0.0, line after line; never a running sum, whose rounding would depend on
// where it started.
#pragma once

#include <cstddef>
#include <span>

#include "lanes/LaneKernel.h"

// 1 / (2 * radius + 1).
inline float blur_scale(int radius) {
    return 1.0f / static_cast<float>(2 * radius + 1);
}

// sum[i] += lines[0][i], then lines[1][i] and so on, for i < n. Lines must not overlap the sum.
using BlurAdd = void(std::span<const float* const> lines, float* sum, std::size_t n);
LANE_KERNEL(BlurAdd, blur_add);
// sum[i] = scale * sum[i].
using BlurFinish = void(float scale, float* sum, std::size_t n);
LANE_KERNEL(BlurFinish, blur_finish);
