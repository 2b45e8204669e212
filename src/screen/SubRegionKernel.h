// A crude subject test of a span without a clean plate: 255 where the colours leave no room for the backing.
//
// Colour in role order on the working scale; n pixels; the output must not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct SubRegionParams {
    ControlTriple backing;              // role 0, role 1, primary
    double brights, darks, cool, warm;  // 1.0 is 100 per cent
};

inline SubRegionParams sub_region_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {controls.get(controls::kBackingColor), percent(controls::kFilmBrights),
            percent(controls::kFilmDarks), percent(controls::kInnerCoolDensity),
            percent(controls::kInnerWarmDensity)};
}

using SubRegion = void(const SubRegionParams& params, const RolePixels& fg, float* alpha, std::size_t n);
LANE_KERNEL(SubRegion, sub_region);
