// The clear-region decision of a span: 255 where a pixel shows nothing but backing, else 0.
//
// A pixel passes when both secondary channels pass: below the backing's primary level each must stay under
// a line from its dark threshold to its backing level, from that level up the primary must still dominate.
// Colour in role order on the working scale; n pixels; the output must not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct ClearRegionParams {
    std::int32_t backing0, backing1, backingP;  // role 0, role 1, primary
    std::int32_t tolerance0, tolerance1;
    double brights1, darks1;  // role 1; 1.0 is 100 per cent
    double brights0, darks0;  // role 0
};

// "G>R" is the pair for role 1 and "R>G" the one for role 0, whatever colours those are.
inline ClearRegionParams clear_region_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const ControlTriple tolerance = controls.get(controls::kScreenTolerance);
    return {backing[0],
            backing[1],
            backing[2],
            tolerance[0],
            tolerance[1],
            percent(controls::kRotoBrightsGR),
            percent(controls::kRotoDarksGR),
            percent(controls::kRotoBrightsRG),
            percent(controls::kRotoDarksRG)};
}

// Mattes that decide before the colours do; null for those that are not in use. In this order: a holdout
// that is not 0 gives 0, a crude matte or a garbage matte that is not 0 gives 255.
struct ClearRegionMattes {
    const float* holdout;
    const float* crude;
    const float* garbage;
};

// `plate` is the backing pixel by pixel, null for the constant backing of the parameters.
using ClearRegion = void(const ClearRegionParams& params, const RolePixels& fg, const RolePixels* plate,
                         const ClearRegionMattes& mattes, float* alpha, std::size_t n);
LANE_KERNEL(ClearRegion, clear_region);
