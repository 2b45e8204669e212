// Shadow density of a span: how much darker the interpolated backing is than the nominal backing colour.
//
// Colour in any order on the working scale; density 0 (no shadow) to 255 (black); n pixels; the output must
// not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct ComputeShadowParams {
    double gain;  // brings the nominal backing's brightness to 255
};

inline ComputeShadowParams compute_shadow_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto sum = std::int64_t{backing[0]} + backing[1] + backing[2];
    return {255.0 / static_cast<double>(sum)};
}

using ComputeShadow = void(const ComputeShadowParams& params, const RolePixels& backing, float* density,
                           std::size_t n);
LANE_KERNEL(ComputeShadow, compute_shadow);
