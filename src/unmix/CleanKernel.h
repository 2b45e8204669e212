// The steps that take noise out of a matte. Arrays have n values; masks are 0 or 1.
#pragma once

#include <cstddef>

#include "lanes/LaneKernel.h"

struct CleanParams {
    float denoise;  // 1: noise counts as measured; 0: as none
    float detail;   // 1; greater values take less for noise
};

// How much more alpha varies around pixels than noise does (after Lee: Digital image enhancement and noise
// filtering by use of local statistics, 1980): sums over the same square of the mask, of alpha, of its square and of
// its variance by noise.
struct AlphaSums {
    const float* mask;
    const float* alpha;
    const float* square;
    const float* variance;
};
using NoiseRatio = void(const AlphaSums& sums, const float* mask, float* ratio, std::size_t n);
LANE_KERNEL(NoiseRatio, noise_ratio);

// Alpha of unknown pixels goes to the mean around it where `ratio` says noise.
using SmoothAlpha = void(const CleanParams& params, const AlphaSums& sums, const float* ratio, const float* unknown,
                         const float* alpha, float* out, std::size_t n);
LANE_KERNEL(SmoothAlpha, smooth_alpha);

// Marks unknown pixels that noise alone does not explain; `sum` is alpha's over 3 x 3 pixels. Solids are marked.
using MarkSeen = void(const CleanParams& params, const float* alpha, const float* sum, const float* variance,
                      const float* unknown, const float* solid, float* marked, std::size_t n);
LANE_KERNEL(MarkSeen, mark_seen);

// Pulls alpha to 0 where backing with noise is likelier than anything else; `marked` is the sum of the marks over
// 11 x 11 pixels, which tells how likely something is there at all.
using PullToClear = void(const CleanParams& params, const float* marked, const float* variance,
                         const float* unknown, float* alpha, std::size_t n);
LANE_KERNEL(PullToClear, pull_to_clear);

// Marks what may be opaque, and solids.
using MarkOpaque = void(const CleanParams& params, const float* alpha, const float* deviation, const float* unknown,
                        const float* solid, float* marked, std::size_t n);
LANE_KERNEL(MarkOpaque, mark_opaque);

// Pulls alpha to 1 likewise; `marked` is the sum over 7 x 7 pixels.
using PullToOpaque = void(const CleanParams& params, const float* marked, const float* deviation,
                          const float* unknown, float* alpha, std::size_t n);
LANE_KERNEL(PullToOpaque, pull_to_opaque);
