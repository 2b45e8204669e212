// The choice among the candidate colours of pixels. All arrays have n values.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"
#include "unmix/SolveKernel.h"

// Costs beyond this count as this when they are averaged, so that one pixel does not decide for its
// neighbours.
inline constexpr float kMostCost = 60.0f;

// means[i] = sums[at[i]] * scale[i]
using GatherMeans = void(const float* sums, const std::int32_t* at, const float* scale, float* means,
                         std::size_t n);
LANE_KERNEL(GatherMeans, gather_means);

// out[i] = table[at[i]] * scale; returns the least of them; n > 0.
using GatherScaled = float(const float* table, const std::int32_t* at, float scale, float* out,
                           std::size_t n);
LANE_KERNEL(GatherScaled, gather_scaled);

// spread[at[i]] = values[i], from -limit to limit. No two places are the same.
using ScatterLimited = void(const float* values, float limit, const std::int32_t* at, float* spread,
                            std::size_t n);
LANE_KERNEL(ScatterLimited, scatter_limited);

// The greatest of n values, n > 0.
using Greatest = float(const float* values, std::size_t n);
LANE_KERNEL(Greatest, greatest);

// The present choice takes a cluster's solution where its cost around the pixel, `mean`, with its distance is
// less than `best`. `away` is in units of cost. `chosen` becomes `number` there.
struct ChoiceRows {
    float* best;
    Solved chosen;
    float* number;
};
using TakeBetter = void(const Solved& other, const float* mean, const float* away, float number,
                        const ChoiceRows& choice, std::size_t n);
LANE_KERNEL(TakeBetter, take_better);

// Mixes the neutral solution into the chosen one by how much likelier either is: `lead` is the mean
// difference of their costs, half of which is the logarithm of the odds; near a solid its colour is likelier
// by itself. `number` becomes 1 where the neutral one weighs more. `near` is 1 at a solid, 0 far from it.
using MixNeutral = void(const Solved& neutral, const float* lead, const float* near, const ChoiceRows& choice,
                        std::size_t n);
LANE_KERNEL(MixNeutral, mix_neutral);
