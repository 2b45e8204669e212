// Takes the screen's light out of the subject's colour.
#pragma once

#include <array>
#include <cstddef>

#include "lanes/LaneKernel.h"

// How a table of expected spill is laid out: by hue (the first other channel's share of both), by the
// brightness of both, and by rel, what the screen's channel has beyond their mean over their sum.
struct SpillGrid {
    static constexpr int kHues = 48;
    static constexpr int kLevels = 10;
    static constexpr int kRels = 61;
    static constexpr float kLowHue = 0.15f, kHighHue = 0.85f;
    static constexpr float kLowRel = -0.5f, kHighRel = 0.7f;
    static constexpr float kBrightest = 2.2f;  // sum of the others at the last level
    static constexpr std::size_t kSize = static_cast<std::size_t>(kHues) * kLevels * kRels;
};

struct SpillParams {
    const float*
        table;  // SpillGrid::kSize values, rel fastest; null: the screen's channel may not pass the others
    std::array<std::size_t, 3> channels;  // the screen's, then the others
    std::array<float, 3> screen;          // its colour over its primary's, red, green, blue
    float amount;                         // of the expected spill that is taken out
};

// `sums` are colour and alpha summed over 3 x 3 pixels. `colour` is premultiplied, red, green, blue, read and
// written.
using RemoveSpill = void(const SpillParams& params, const std::array<const float*, 4>& sums,
                         const float* alpha, const std::array<float*, 3>& colour, std::size_t n);
LANE_KERNEL(RemoveSpill, remove_spill);

// colour = plate - (1 - alpha) * backing; 0 where alpha is 0.
using TakeBacking = void(const float* plate, const float* backing, const float* alpha, float* colour,
                         std::size_t n);
LANE_KERNEL(TakeBacking, take_backing);

// Sums over 3 x 3 pixels; the three rows begin a pixel before the first sum's, and end a pixel after the
// last.
using SumRows = void(const std::array<const float*, 3>& rows, float* sum, std::size_t n);
LANE_KERNEL(SumRows, sum_rows);
