// The walks by which every pixel of a frame finds its nearest clear pixel; see NearestClear.h.
//
// Steps is the number that distances are kept in, std::int16_t or std::int32_t.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"

// Stands for the distance where a row has no clear pixel.
template <class Steps>
inline constexpr Steps kNoSteps = sizeof(Steps) == 2 ? 30000 : 1 << 30;
// The longest width + height; leaves a band's rows below kNoSteps.
template <class Steps>
inline constexpr Steps kMostSteps = sizeof(Steps) == 2 ? 29000 : 1 << 29;

// Columns and rows that are walked at once.
inline constexpr int kWalkColumns = 128;
inline constexpr int kWalkRows = 64;

// What a walk has met so far, per column: the distance, and the column of the clear pixel less its own.
template <class Steps>
struct Met {
    Steps* distance;
    Steps* offset;
};

// Columns [0, columns) and rows [0, rows) of a band; pointers are to its first pixel.
template <class Steps>
struct WalkTile {
    int columns;
    int rows;
    std::ptrdiff_t width;  // of the frame
    Steps farthest;
    Steps* steps;
    Met<Steps> up;    // met below the band
    Met<Steps> down;  // met above the band
    float* planes[3];
};

// Per pixel of a row the column of its nearest clear pixel, of equally near ones the left, less its own.
// Returns whether the row has one.
template <class Steps>
using FindInRow = bool(const float* clear, std::ptrdiff_t width, Steps* offset);
// Leaves in `up` and `down` what walks over the band alone have met at its last row and its first.
template <class Steps>
using SumUpWalks = void(const WalkTile<Steps>& tile);
// Walks the band; turns its steps to distances and fills its pixels.
template <class Steps>
using WalkAndFill = void(const WalkTile<Steps>& tile);

LANE_KERNEL(FindInRow<std::int16_t>, find_in_row_16);
LANE_KERNEL(FindInRow<std::int32_t>, find_in_row_32);
LANE_KERNEL(SumUpWalks<std::int16_t>, sum_up_walks_16);
LANE_KERNEL(SumUpWalks<std::int32_t>, sum_up_walks_32);
LANE_KERNEL(WalkAndFill<std::int16_t>, walk_and_fill_16);
LANE_KERNEL(WalkAndFill<std::int32_t>, walk_and_fill_32);
