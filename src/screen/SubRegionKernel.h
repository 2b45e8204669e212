// A crude subject test of a span without a clean plate: 255 where the colours leave no room for the backing.
//
// Colour in role order on the working scale; n pixels; the output must not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ControlBlock.h"
#include "lanes/LaneKernel.h"
#include "stages/ChannelRoles.h"

struct SubRegionParams {
    ControlTriple backing;              // role 0, role 1, primary
    double brights, darks, cool, warm;  // 1.0 is 100 per cent
};

SubRegionParams sub_region_params(const ControlBlock& controls);

using SubRegion = void(const SubRegionParams& params, const RolePixels& fg, float* alpha, std::size_t n);
extern const LaneKernel<SubRegion> sub_region;
