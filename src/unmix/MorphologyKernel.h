// Rows of masks and distances.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"

// The pixel below, above, to the left, to the right, and itself: `out` gets what is set in any of them
// (grow), or in all (shrink). Each of the rows below, here and above has one pixel more at both ends.
using CrossMask = void(const std::array<const std::uint8_t*, 3>& rows, std::uint8_t* out, std::size_t n);
LANE_KERNEL(CrossMask, grow_mask);
LANE_KERNEL(CrossMask, shrink_mask);

// One more row away from pixels that are not set: `steps` becomes 0 at them, else one more, at most `most`.
using StepAway = void(const std::uint8_t* mask, float most, float* steps, std::size_t n);
LANE_KERNEL(StepAway, step_away);

// out = min(out, v)
using KeepLess = void(const float* v, float* out, std::size_t n);
LANE_KERNEL(KeepLess, keep_less);

// Distances of a row's pixels, at most `most`, from their columns' distances: the root of the least of d^2 +
// columns(x + d)^2 for d up to `reach`. `squares` is scratch for n + 2 reach + 64 values.
using RowDistance = void(const float* columns, int reach, float most, float* squares, float* out,
                         std::size_t n);
LANE_KERNEL(RowDistance, row_distance);

// Linear interpolation between the middles of cells that are `side` pixels wide: pixels from the first cell's
// middle on. `cells` has one cell more than is needed.
using BetweenMiddles = void(const float* cells, int side, float* out, std::size_t gaps);
LANE_KERNEL(BetweenMiddles, between_middles);

// out = a + share * (b - a)
using MixRows = void(const float* a, const float* b, float share, float* out, std::size_t n);
LANE_KERNEL(MixRows, mix_rows);

// A row joins those before it: the least, the greatest, the sum of each column.
struct ColumnFolds {
    float* least;
    float* most;
    float* sum;
};
using FoldRow = void(const float* row, const ColumnFolds& folds, std::size_t n);
LANE_KERNEL(FoldRow, fold_row);

// Neighbours join in pairs; writes the first half of n values, n even.
using FoldPairs = void(const ColumnFolds& folds, std::size_t n);
LANE_KERNEL(FoldPairs, fold_pairs);
